#include "codecs/pnm.h"

#include <algorithm>
#include <limits>

namespace tools {
namespace {

constexpr int largestMaximum = 65535;
/// Enough of a number for a message.
constexpr std::size_t longestNumber = 40;

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// A number, and its digits in the file.
struct Number {
    int value = 0;
    std::string_view digits;
};

/// Walks over the numbers of a file.
class Reader {
  public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    /// The next number, after any white space and comments; numbers beyond the range of int stay at its end.
    Number number() {
        skipSpace();
        const std::size_t start = place_;
        constexpr int largest = std::numeric_limits<int>::max();
        Number number;
        for (; place_ < bytes_.size() && isDigit(bytes_[place_]); ++place_) {
            const int digit = bytes_[place_] - '0';
            number.value = number.value > (largest - digit) / 10 ? largest : number.value * 10 + digit;
        }
        if (place_ == start) throw Failure("is damaged: a number is missing");
        number.digits = bytes_.substr(start, std::min(place_ - start, longestNumber));
        return number;
    }

    /// The next 0 or 1, which need nothing between them.
    bool bit() {
        skipSpace();
        const char digit = bytes_[place_++];
        if (digit != '0' && digit != '1') throw Failure("is damaged: a bit is neither 0 nor 1");
        return digit == '1';
    }

    /// The next word, after any white space and comments.
    std::string_view word() {
        skipSpace();
        const std::size_t start = place_;
        while (place_ < bytes_.size() && !isSpace(bytes_[place_])) ++place_;
        return bytes_.substr(start, place_ - start);
    }

    void skipLine() { place_ = std::min(bytes_.find('\n', place_), bytes_.size()); }
    void skip(std::size_t count) { place_ = std::min(place_ + count, bytes_.size()); }
    std::string_view rest() const { return bytes_.substr(place_); }

  private:
    void skipSpace() {
        for (; place_ < bytes_.size() && (isSpace(bytes_[place_]) || bytes_[place_] == '#'); ++place_)
            if (bytes_[place_] == '#') skipLine();
        if (place_ >= bytes_.size()) throw CutShort();
    }

    std::string_view bytes_;
    std::size_t place_ = 0;
};

struct Header {
    char kind = 0;
    Number width, height;
    /// Samples of a pixel.
    int depth = 1;
    int maximum = 1;

    bool inDigits() const { return kind <= '3'; }
    bool isOfBits() const { return kind == '1' || kind == '4'; }
    PictureHeader size() const {
        return {width.value, height.value, std::string(width.digits) + " x " + std::string(height.digits)};
    }
};

/// The lines of a PAM file up to ENDHDR.
void readNamedNumbers(Reader& reader, Header& header) {
    header.depth = header.maximum = 0;
    for (;;) {
        const std::string_view name = reader.word();
        if (name == "ENDHDR") break;
        if (name == "WIDTH")
            header.width = reader.number();
        else if (name == "HEIGHT")
            header.height = reader.number();
        else if (name == "DEPTH")
            header.depth = reader.number().value;
        else if (name == "MAXVAL")
            header.maximum = reader.number().value;
        else
            reader.skipLine();
    }
    if (header.width.digits.empty() || header.height.digits.empty())
        throw Failure("is damaged: its header gives no size");
    if (header.depth < 1 || header.depth > 4) throw Failure("has not 1 to 4 channels");
}

Header readHeader(Reader& reader) {
    Header header;
    header.kind = reader.rest()[1];
    reader.skip(2);
    if (header.kind == '7') {
        readNamedNumbers(reader, header);
    } else {
        header.depth = header.kind == '3' || header.kind == '6' ? 3 : 1;
        header.width = reader.number();
        header.height = reader.number();
        if (!header.isOfBits()) header.maximum = reader.number().value;
    }
    if (header.maximum < 1 || header.maximum > largestMaximum)
        throw Failure("is damaged: its largest value is not within 1 to 65535");
    return header;
}

Lum8u brought(int value, int maximum) {
    return static_cast<Lum8u>((std::min(value, maximum) * 255 + maximum / 2) / maximum);
}

/// Bytes that the samples take at least.
std::size_t leastBytes(const Header& header) {
    const std::size_t width = header.width.value;
    const std::size_t height = header.height.value;
    const std::size_t samples = width * height * header.depth;
    if (header.kind == '1') return samples;
    if (header.kind == '4') return (width + 7) / 8 * height;
    // Numbers have white space between them.
    if (header.inDigits()) return 2 * samples - 1;
    return samples * (header.maximum > 255 ? 2 : 1);
}

/// In bits, 1 is black.
void readBits(Reader& reader, bool inDigits, Picture& picture) {
    const std::string_view bytes = reader.rest();
    const std::size_t rowBytes = (static_cast<std::size_t>(picture.width) + 7) / 8;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const bool isBlack =
                inDigits ? reader.bit() : (bytes[y * rowBytes + x / 8] >> (7 - x % 8) & 1) != 0;
            picture.at(x, y) = isBlack ? 0 : 255;
        }
}

/// Samples of which the first of each pixel are taken: the last of two and of four is alpha.
template <class Next> void readSamples(const Header& header, Picture& picture, Next next) {
    const std::size_t pixels = static_cast<std::size_t>(picture.width) * picture.height;
    Lum8u* element = picture.data();
    for (std::size_t i = 0; i < pixels; ++i)
        for (int c = 0; c < header.depth; ++c) {
            const int sample = next();
            if (c < picture.channels) *element++ = brought(sample, header.maximum);
        }
}

} // namespace

bool looksLikePnm(std::string_view bytes) {
    return bytes.size() > 2 && bytes[0] == 'P' && bytes[1] >= '1' && bytes[1] <= '7' &&
           (isSpace(bytes[2]) || bytes[2] == '#');
}

PictureHeader pnmHeader(std::string_view bytes) {
    Reader reader(bytes);
    return readHeader(reader).size();
}

Picture readPnm(std::string_view bytes) {
    Reader reader(bytes);
    const Header header = readHeader(reader);
    expectReasonable(header.size());
    // After binary kinds' headers comes one byte of white space.
    if (!header.inDigits()) reader.skip(1);
    if (reader.rest().size() < leastBytes(header)) throw CutShort();

    Picture picture(header.width.value, header.height.value, header.depth < 3 ? 1 : 3);
    if (header.isOfBits()) {
        readBits(reader, header.inDigits(), picture);
    } else if (header.inDigits()) {
        readSamples(header, picture, [&] { return reader.number().value; });
    } else {
        const auto* sample = reinterpret_cast<const unsigned char*>(reader.rest().data());
        const bool isWide = header.maximum > 255;
        readSamples(header, picture, [&] {
            const int value = isWide ? sample[0] * 256 + sample[1] : sample[0];
            sample += isWide ? 2 : 1;
            return value;
        });
    }
    return picture;
}

std::string pnmBytes(const Picture& picture) {
    std::string bytes = picture.channels == 3 ? "P6\n" : "P5\n";
    bytes += std::to_string(picture.width) + " " + std::to_string(picture.height) + "\n255\n";
    bytes.append(reinterpret_cast<const char*>(picture.data()), picture.elements.size());
    return bytes;
}

std::string pamBytes(const Picture& picture) {
    std::string bytes = "P7\nWIDTH " + std::to_string(picture.width) + "\nHEIGHT " +
                        std::to_string(picture.height) + "\nDEPTH " + std::to_string(picture.channels) +
                        "\nMAXVAL 255\nTUPLTYPE " + (picture.channels == 3 ? "RGB" : "GRAYSCALE") +
                        "\nENDHDR\n";
    bytes.append(reinterpret_cast<const char*>(picture.data()), picture.elements.size());
    return bytes;
}

} // namespace tools
