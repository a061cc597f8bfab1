// The benchmark. Options of its own: --scene FILE.pgm, --edges FILE.pgm, --size WIDTHxHEIGHT of the picture, --overhead for
// calls on 8 x 8 pixels; all others are Google Benchmark's, as in --benchmark_filter=AbsDiff.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

#include "rows.h"
#include "scene.h"

namespace bench {
namespace {

constexpr int repetitions = 7;
const char* const copyName = "copy";

struct Row {
    std::string name;
    double pixelsOfRow;
};
std::vector<Row> rows;

struct File {
    void (*rows)();
    Measure measure;
};

/// The files of rows; none is run before the options are read.
std::vector<File>& rowFiles() {
    static std::vector<File> files;
    return files;
}

/// Keeps the fastest of each row's repetitions: on a shared machine the others tell of its neighbours.
class FastestOfRows : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const double seconds = run.GetAdjustedRealTime() * 1e-9;
            auto [place, isNew] = fastest_.emplace(run.run_name.function_name, seconds);
            if (!isNew) place->second = std::min(place->second, seconds);
        }
    }

    /// A line a row that has run.
    void print(Measure measure) const {
        // Nothing has run where only the names were asked for.
        if (fastest_.empty()) return;
        const double copy = fastest_.at(copyName);
        std::printf(measure == Measure::calls ? "work\tns\n" : "work\tx\tns_px\tms\n");
        for (const Row& row : rows) {
            const auto place = fastest_.find(row.name);
            if (place == fastest_.end()) continue;
            const double seconds = place->second;
            if (measure == Measure::calls)
                std::printf("%s\t%.1f\n", row.name.c_str(), seconds * 1e9);
            else
                std::printf("%s\t%.2f\t%.3f\t%.3f\n", row.name.c_str(), seconds / copy,
                            seconds * 1e9 / row.pixelsOfRow, seconds * 1e3);
        }
    }

  private:
    std::map<std::string, double> fastest_;
};

void measure(benchmark::State& state, const Setup& setup) {
    const std::function<void()> work = setup();
    work();
    for ([[maybe_unused]] auto iteration : state) {
        work();
        benchmark::ClobberMemory();
    }
}

std::function<void()> copyOfScene() {
    auto dst = std::make_shared<Plane<Lum8u>>();
    return [dst] { std::memcpy(dst->data, scene().data, pixels); };
}

} // namespace

RowFile::RowFile(void (*rowsOfFile)(), Measure measure) { rowFiles().push_back({rowsOfFile, measure}); }

void row(const std::string& name, Setup setup, double pixelsOfRow) {
    rows.push_back({name, pixelsOfRow});
    benchmark::RegisterBenchmark(name.c_str(), [setup](benchmark::State& state) { measure(state, setup); })
        ->MinTime(0.05)
        ->Repetitions(repetitions)
        ->UseRealTime();
}

void registerRows(Measure measure) {
    row(copyName, copyOfScene);
    for (const File& file : rowFiles())
        if (file.measure == measure) file.rows();
}

/// Settles the size that WIDTHxHEIGHT says; ends the program where the rows do not work on it.
void readSize(const std::string& text) {
    LumSize wanted{};
    char end = 0;
    const bool isSize = std::sscanf(text.c_str(), "%dx%d%c", &wanted.width, &wanted.height, &end) == 2;
    if (!isSize || wanted.width < leastSize.width || wanted.height < leastSize.height ||
        wanted.width > largestSize.width || wanted.height > largestSize.height || wanted.width % 8 != 0) {
        std::fprintf(stderr,
                     "lumcv_bench: --size takes %dx%d to %dx%d, as in 640x480; widths are multiples of 8\n",
                     leastSize.width, leastSize.height, largestSize.width, largestSize.height);
        std::exit(2);
    }
    setSize(wanted);
}

} // namespace bench

int main(int argc, char** argv) {
    const std::map<std::string, void (*)(const std::string&)> readers = {
        {"--scene", bench::readScene}, {"--edges", bench::readEdges}, {"--size", bench::readSize}};
    std::vector<std::string> arguments(argv, argv + argc);
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const auto reader = readers.find(arguments[i]);
        if (reader == readers.end() || i + 1 == arguments.size()) continue;
        reader->second(arguments[i + 1]);
        arguments.erase(arguments.begin() + i, arguments.begin() + i + 2);
        --i;
    }
    const bool overhead = std::erase(arguments, "--overhead") > 0;
    const bench::Measure measure = overhead ? bench::Measure::calls : bench::Measure::pictures;
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    int count = static_cast<int>(pointers.size());

    bench::registerRows(measure);
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;
    bench::FastestOfRows report;
    // The copy is measured whatever the filter.
    benchmark::RunSpecifiedBenchmarks(&report, std::string("^") + bench::copyName + "/");
    // The library itself says that nothing matches the filter.
    if (benchmark::RunSpecifiedBenchmarks(&report) == 0) return 1;
    report.print(measure);
    return 0;
}
