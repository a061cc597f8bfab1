#include "codecs/png.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <new>
#include <png.h>

namespace tools {
namespace {

/// Chunks as they follow each other: length, name, contents, check sum.
constexpr std::size_t signatureLength = 8;
constexpr std::size_t chunkFrame = 12;
/// Deflated data grow to at most 1032 times their size.
constexpr std::int64_t mostGrowth = 1032;

std::uint32_t bigEndian(std::string_view bytes, std::size_t place) {
    std::uint32_t value = 0;
    for (const char c : bytes.substr(place, 4)) value = value << 8 | static_cast<unsigned char>(c);
    return value;
}

/// Bits of a pixel in the file.
int bitsOfPixel(std::string_view bytes) {
    constexpr std::size_t depthPlace = 24;
    constexpr int channelsOfKind[] = {1, 0, 3, 1, 2, 0, 4};
    const auto kind = static_cast<unsigned char>(bytes[depthPlace + 1]);
    return kind > 6 ? 0 : static_cast<unsigned char>(bytes[depthPlace]) * channelsOfKind[kind];
}

/// All chunks up to the last one are there, and there is enough in them for the pixels.
void expectWhole(std::string_view bytes, const PictureHeader& header) {
    std::int64_t deflated = 0;
    std::size_t i = signatureLength;
    for (;;) {
        if (i + chunkFrame > bytes.size()) throw CutShort();
        const std::uint32_t length = bigEndian(bytes, i);
        if (length > bytes.size() - i - chunkFrame) throw CutShort();
        const std::string_view name = bytes.substr(i + 4, 4);
        if (name == "IEND") break;
        if (name == "IDAT") deflated += length;
        i += chunkFrame + length;
    }
    if (header.width * header.height * bitsOfPixel(bytes) / 8 > deflated * mostGrowth)
        throw Failure("is damaged: its data cannot fill " + header.size + " pixels");
}

/// One of the library's objects. Its errors leave through a jump, over frames that hold nothing to be released.
class Errors {
  public:
    /// Runs calls of the library, none of which leaves anything on the stack that must be destroyed.
    template <class Calls> void guard(const char* what, Calls calls) {
        if (setjmp(jump_) != 0) {
            if (std::strstr(text_, "emory") != nullptr) throw std::bad_alloc();
            throw Failure(std::string(what) + text_);
        }
        calls();
    }

    [[noreturn]] static void leave(png_structp png, png_const_charp text) {
        auto* errors = static_cast<Errors*>(png_get_error_ptr(png));
        std::strncpy(errors->text_, text, sizeof errors->text_ - 1);
        std::longjmp(errors->jump_, 1);
    }
    static void ignore(png_structp, png_const_charp) {}

  private:
    std::jmp_buf jump_{};
    char text_[160] = {};
};

class Decoder : public Errors {
  public:
    explicit Decoder(std::string_view bytes) : rest_(bytes) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, static_cast<Errors*>(this), leave, ignore);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_read_struct(&png_, &info_, nullptr);
            throw std::bad_alloc();
        }
    }
    ~Decoder() { png_destroy_read_struct(&png_, &info_, nullptr); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    Picture picture() {
        guard("is damaged: ", [&] { readHeader(); });
        Picture result(static_cast<int>(png_get_image_width(png_, info_)),
                       static_cast<int>(png_get_image_height(png_, info_)), png_get_channels(png_, info_));
        guard("is damaged: ", [&] {
            // Each pass of an interlaced picture goes over all rows.
            for (int pass = 0; pass < passes_; ++pass)
                for (int y = 0; y < result.height; ++y) png_read_row(png_, result.row(y), nullptr);
        });
        return result;
    }

  private:
    static void take(png_structp png, png_bytep destination, std::size_t count) {
        auto& rest = static_cast<Decoder*>(png_get_io_ptr(png))->rest_;
        if (count > rest.size()) png_error(png, "it is cut short");
        std::copy_n(rest.data(), count, reinterpret_cast<char*>(destination));
        rest.remove_prefix(count);
    }

    void readHeader() {
        png_set_read_fn(png_, this, take);
        png_set_user_limits(png_, largestSide, largestSide);
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
        // Bytes that a fuzzer changes would not get beyond their check sum.
        png_set_crc_action(png_, PNG_CRC_QUIET_USE, PNG_CRC_QUIET_USE);
#endif
        // Nothing but the header, the palette and the pixels.
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(png_, info_);
        png_set_palette_to_rgb(png_);
        png_set_expand_gray_1_2_4_to_8(png_);
        png_set_scale_16(png_);
        png_set_strip_alpha(png_);
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
    }

    std::string_view rest_;
    int passes_ = 0;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

class Encoder : public Errors {
  public:
    Encoder() {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, static_cast<Errors*>(this), leave, ignore);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_write_struct(&png_, &info_);
            throw std::bad_alloc();
        }
    }
    ~Encoder() { png_destroy_write_struct(&png_, &info_); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    std::string bytes(const Picture& picture) {
        guard("cannot be encoded: ", [&] { write(picture); });
        return std::move(bytes_);
    }

  private:
    static void append(png_structp png, png_bytep source, std::size_t count) {
        bool appended = true;
        // No exception may pass through the library.
        try {
            static_cast<Encoder*>(png_get_io_ptr(png))->bytes_.append(reinterpret_cast<char*>(source), count);
        } catch (const std::bad_alloc&) {
            appended = false;
        } catch (const std::length_error&) {
            appended = false;
        }
        if (!appended) png_error(png, "Out of memory");
    }
    static void flush(png_structp) {}

    void write(const Picture& picture) {
        png_set_write_fn(png_, this, append, flush);
        png_set_IHDR(png_, info_, picture.width, picture.height, 8,
                     picture.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        // A third of the default's time, for a twentieth more bytes.
        png_set_compression_level(png_, 3);
        png_set_filter(png_, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB | PNG_FILTER_UP | PNG_FILTER_PAETH);
        png_write_info(png_, info_);
        for (int y = 0; y < picture.height; ++y) png_write_row(png_, picture.row(y));
        png_write_end(png_, nullptr);
    }

    std::string bytes_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

} // namespace

PictureHeader pngHeader(std::string_view bytes) {
    constexpr std::size_t widthPlace = 16;
    constexpr std::size_t headerEnd = 33;
    if (bytes.size() < headerEnd) throw CutShort();
    if (bytes.substr(widthPlace - 4, 4) != "IHDR") throw Failure("is damaged: it has no readable header");
    return {bigEndian(bytes, widthPlace), bigEndian(bytes, widthPlace + 4)};
}

Picture readPng(std::string_view bytes) {
    const PictureHeader header = pngHeader(bytes);
    expectReasonable(header);
    expectWhole(bytes, header);
    return Decoder(bytes).picture();
}

std::string pngBytes(const Picture& picture) { return Encoder().bytes(picture); }

} // namespace tools
