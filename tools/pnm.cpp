#include "pnm.h"

#include <algorithm>
#include <limits>

#include "failure.h"

namespace tools {
namespace {

constexpr int largestMaximum = 65535;

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Walks over the numbers of a file.
class Reader {
  public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    /// The next number, after any white space and comments; numbers beyond the range of int stay at its end.
    int number() {
        while (place_ < bytes_.size() && (isSpace(bytes_[place_]) || bytes_[place_] == '#')) {
            if (bytes_[place_] == '#')
                place_ = std::min(bytes_.find('\n', place_), bytes_.size());
            else
                ++place_;
        }
        if (place_ == bytes_.size()) throw Failure("is cut short");
        if (!isDigit(bytes_[place_])) throw Failure("is damaged: a number is missing");
        constexpr int largest = std::numeric_limits<int>::max();
        int value = 0;
        for (; place_ < bytes_.size() && isDigit(bytes_[place_]); ++place_) {
            const int digit = bytes_[place_] - '0';
            value = value > (largest - digit) / 10 ? largest : value * 10 + digit;
        }
        return value;
    }

    void skip(std::size_t count) { place_ = std::min(place_ + count, bytes_.size()); }
    std::string_view rest() const { return bytes_.substr(place_); }

  private:
    std::string_view bytes_;
    std::size_t place_ = 0;
};

struct Header {
    char kind;
    int channels;
    int width;
    int height;
    int maximum;
};

Header readHeader(Reader& reader) {
    Header header{};
    header.kind = reader.rest()[1];
    header.channels = header.kind == '3' || header.kind == '6' ? 3 : 1;
    reader.skip(2);
    header.width = reader.number();
    header.height = reader.number();
    header.maximum = reader.number();
    if (header.maximum < 1 || header.maximum > largestMaximum)
        throw Failure("is damaged: its largest value is not within 1 to 65535");
    return header;
}

Lum8u brought(unsigned value, unsigned maximum) {
    return static_cast<Lum8u>((std::min(value, maximum) * 255 + maximum / 2) / maximum);
}

} // namespace

bool looksLikePnm(std::string_view bytes) {
    return bytes.size() > 2 && bytes[0] == 'P' &&
           std::string_view("2356").find(bytes[1]) != std::string_view::npos &&
           (isSpace(bytes[2]) || bytes[2] == '#');
}

Picture pnmHeader(std::string_view bytes) {
    Reader reader(bytes);
    const Header header = readHeader(reader);
    Picture size;
    size.width = header.width;
    size.height = header.height;
    size.channels = header.channels;
    return size;
}

Picture readPnm(std::string_view bytes) {
    Reader reader(bytes);
    const Header header = readHeader(reader);
    const std::size_t bytesOfSample = header.maximum > 255 ? 2 : 1;
    const std::size_t samples = static_cast<std::size_t>(header.width) * header.height * header.channels;
    const bool digits = header.kind == '2' || header.kind == '3';
    if (!digits) reader.skip(1);
    // A sample in digits takes at least a character.
    if (reader.rest().size() / (digits ? 1 : bytesOfSample) < samples) throw Failure("is cut short");

    Picture picture(header.width, header.height, header.channels);
    if (digits) {
        for (Lum8u& element : picture.elements) element = brought(reader.number(), header.maximum);
        return picture;
    }
    const auto* sample = reinterpret_cast<const unsigned char*>(reader.rest().data());
    for (Lum8u& element : picture.elements) {
        const unsigned value = bytesOfSample == 2 ? sample[0] * 256U + sample[1] : sample[0];
        element = brought(value, header.maximum);
        sample += bytesOfSample;
    }
    return picture;
}

std::string pnmBytes(const Picture& picture) {
    std::string bytes = picture.channels == 3 ? "P6\n" : "P5\n";
    bytes += std::to_string(picture.width) + " " + std::to_string(picture.height) + "\n255\n";
    bytes.append(reinterpret_cast<const char*>(picture.data()), picture.elements.size());
    return bytes;
}

} // namespace tools
