#include "picture_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <unistd.h>

/// The decoder names no reason for memory that it did not get, and the encoder does not look: both get it or stop.
static void* obtained(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
#define STBI_MALLOC(size) obtained(std::malloc(size))
#define STBI_REALLOC(memory, size) obtained(std::realloc(memory, size))
#define STBI_FREE(memory) std::free(memory)
#define STBIW_MALLOC(size) obtained(std::malloc(size))
#define STBIW_REALLOC(memory, size) obtained(std::realloc(memory, size))
#define STBIW_FREE(memory) std::free(memory)

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

#include "failure.h"
#include "jpeg_segments.h"
#include "pnm.h"
#include "tones.h"

namespace tools {
namespace {

namespace files = std::filesystem;

constexpr int jpegQuality = 92;
constexpr std::size_t largestFile = std::size_t{1} << 30;

constexpr std::string_view pngSignature = "\x89PNG\r\n\x1A\n";

enum class Format { png, jpeg, pgm, ppm };

std::string reason(int error) { return std::strerror(error); }

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string readFile(const std::string& path) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file) throw Failure("cannot be opened: " + reason(errno));
    std::string bytes;
    char block[65536];
    while (const std::size_t count = std::fread(block, 1, sizeof block, file.get())) {
        bytes.append(block, count);
        if (bytes.size() > largestFile) throw Failure("is larger than a file of a picture may be");
    }
    if (std::ferror(file.get())) throw Failure("cannot be read: " + reason(errno));
    return bytes;
}

/// A decoded pixel takes at most this many bytes, and a decoded picture less than 2 GiB.
void expectReasonableSize(std::int64_t width, std::int64_t height, int bytesOfPixel = 4) {
    if (width < 1 || height < 1) throw Failure("holds no pixel");
    if (width > largestSide || height > largestSide || width * height > largestPixels ||
        width * height > std::numeric_limits<std::int32_t>::max() / bytesOfPixel)
        throw Failure("is too large: " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
}

bool startsWith(std::string_view bytes, std::string_view start) {
    return bytes.substr(0, start.size()) == start;
}

std::uint32_t bigEndian(std::string_view bytes, std::size_t place) {
    std::uint32_t value = 0;
    for (const char c : bytes.substr(place, 4)) value = value << 8 | static_cast<unsigned char>(c);
    return value;
}

/// Whether a PNG file runs up to the end of its last chunk. The decoder stops as soon as it has the pixels.
bool pngIsWhole(std::string_view bytes) {
    constexpr std::size_t chunkFrame = 12;
    std::size_t i = pngSignature.size();
    while (bytes.size() >= chunkFrame && i <= bytes.size() - chunkFrame) {
        if (bytes.substr(i + 4, 4) == "IEND") return true;
        const std::uint32_t length = bigEndian(bytes, i);
        if (length > bytes.size()) return false;
        i += chunkFrame + length;
    }
    return false;
}

/// Looks at the size before anything is decoded. A PNG file tells it at a fixed place; the decoder, asked for it,
/// takes a file of too many pixels for none of its own.
void expectReasonableHeader(std::string_view bytes, bool isJpeg) {
    if (!isJpeg) {
        constexpr std::size_t widthPlace = 16;
        constexpr std::size_t heightPlace = 20;
        constexpr std::size_t depthPlace = 24;
        if (bytes.size() <= depthPlace) throw Failure("is cut short");
        const std::int64_t width = bigEndian(bytes, widthPlace);
        const std::int64_t height = bigEndian(bytes, heightPlace);
        return expectReasonableSize(width, height, bytes[depthPlace] == 16 ? 8 : 4);
    }
    int width = 0;
    int height = 0;
    int channels = 0;
    if (!stbi_info_from_memory(reinterpret_cast<const unsigned char*>(bytes.data()),
                               static_cast<int>(bytes.size()), &width, &height, &channels))
        throw Failure("is damaged or cut short: it has no readable header");
    expectReasonableSize(width, height);
}

Picture decoded(std::string_view bytes) {
    if (looksLikePnm(bytes)) {
        const Picture header = pnmHeader(bytes);
        expectReasonableSize(header.width, header.height);
        return readPnm(bytes);
    }
    const bool isJpeg = startsWith(bytes, "\xFF\xD8");
    if (!isJpeg && !startsWith(bytes, pngSignature)) throw Failure("is not a PNG, JPEG, PGM or PPM picture");

    if (isJpeg)
        expectSoundJpeg(bytes);
    else if (!pngIsWhole(bytes))
        throw Failure("is cut short");
    expectReasonableHeader(bytes, isJpeg);

    int width = 0;
    int height = 0;
    int channels = 0;
    const std::unique_ptr<stbi_uc, void (*)(void*)> pixels(
        stbi_load_from_memory(reinterpret_cast<const unsigned char*>(bytes.data()),
                              static_cast<int>(bytes.size()), &width, &height, &channels, 0),
        stbi_image_free);
    if (!pixels) throw Failure(std::string("cannot be decoded: ") + stbi_failure_reason());

    // Grey with alpha is two channels, colour with alpha four.
    Picture picture(width, height, channels < 3 ? 1 : 3);
    const stbi_uc* pixel = pixels.get();
    for (std::size_t i = 0; i < picture.elements.size(); i += picture.channels, pixel += channels)
        std::copy_n(pixel, picture.channels, picture.data() + i);
    return picture;
}

std::optional<Format> formatOf(const std::string& path) {
    std::string ending = files::path(path).extension().string();
    for (char& c : ending)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (ending == ".png") return Format::png;
    if (ending == ".jpg" || ending == ".jpeg") return Format::jpeg;
    if (ending == ".pgm") return Format::pgm;
    if (ending == ".ppm") return Format::ppm;
    return std::nullopt;
}

void append(void* bytes, void* data, int count) {
    static_cast<std::string*>(bytes)->append(static_cast<const char*>(data), count);
}

std::string encoded(const Picture& picture, Format format) {
    if (format == Format::pgm) return pnmBytes(picture);
    if (format == Format::ppm) return pnmBytes(colourOf(picture));
    std::string bytes;
    const int done = format == Format::png
                         ? stbi_write_png_to_func(append, &bytes, picture.width, picture.height,
                                                  picture.channels, picture.data(), picture.step())
                         : stbi_write_jpg_to_func(append, &bytes, picture.width, picture.height,
                                                  picture.channels, picture.data(), jpegQuality);
    if (!done) throw Failure("cannot be encoded");
    return bytes;
}

/// How a file is made that was not there before.
#ifdef _WIN32
constexpr int newFile = O_WRONLY | O_CREAT | O_EXCL | O_BINARY;
#else
constexpr int newFile = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
#endif

/// A file under a temporary name, which goes away again unless it is moved to its place.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& target) {
        // A program that was killed may have left its file, and have had the same number.
        constexpr int mostNames = 1000;
        for (int i = 0; i < mostNames && descriptor_ < 0; ++i) {
            path_ = target + "." + std::to_string(getpid()) + "-" + std::to_string(i) + ".part";
            descriptor_ = open(path_.c_str(), newFile, 0666);
            if (descriptor_ < 0 && errno != EEXIST) break;
        }
        if (descriptor_ < 0) throw Failure("cannot be written: " + reason(errno));
    }
    ~TemporaryFile() {
        if (descriptor_ >= 0) close(descriptor_);
        if (!moved_) unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) throw Failure("cannot be written: " + reason(errno));
            bytes.remove_prefix(count);
        }
    }

    void moveTo(const std::string& target) {
        const int closed = close(descriptor_);
        descriptor_ = -1;
        if (closed != 0) throw Failure("cannot be written: " + reason(errno));
        std::error_code error;
        files::rename(path_, target, error);
        if (error) throw Failure("cannot be written: " + error.message());
        moved_ = true;
    }

  private:
    std::string path_;
    int descriptor_ = -1;
    bool moved_ = false;
};

/// Puts the file's name in front of what is wrong with it.
template <class Work> auto named(const std::string& path, Work work) {
    try {
        return work();
    } catch (const Failure& failure) {
        throw Failure(path + " " + failure.what());
    }
}

} // namespace

Picture readPicture(const std::string& path) {
    return named(path, [&] { return decoded(readFile(path)); });
}

void expectWritable(const std::string& path, int channels) {
    named(path, [&] {
        const auto format = formatOf(path);
        if (!format) throw Failure("cannot be written: the name must end in .png, .jpg, .pgm or .ppm");
        if (format == Format::pgm && channels != 1)
            throw Failure("cannot be written: a PGM file holds no colour, a PPM file does");
        std::error_code ignored;
        const files::file_status place = files::status(path, ignored);
        if (files::exists(place) && !files::is_regular_file(place))
            throw Failure("cannot be written: it is there already, and is no ordinary file");
    });
}

void writePicture(const std::string& path, const Picture& picture) {
    expectWritable(path, picture.channels);
    const std::string bytes = named(path, [&] { return encoded(picture, *formatOf(path)); });
    writeFile(path, bytes);
}

void writeFile(const std::string& path, const std::string& bytes) {
    named(path, [&] {
        TemporaryFile file(path);
        file.write(bytes);
        file.moveTo(path);
    });
}

std::string describe(const Picture& picture) {
    return std::to_string(picture.width) + " x " + std::to_string(picture.height) +
           (picture.channels == 3 ? " colour" : " grey");
}

} // namespace tools
