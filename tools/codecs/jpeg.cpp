#include "codecs/jpeg.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

// Both need <cstdio> before them.
#include <jpeglib.h>

#include <jerror.h>

namespace tools {
namespace {

constexpr int quality = 92;
/// Pictures are made of squares of 8 x 8 pixels.
constexpr std::int64_t side = 8;
/// Scans that refine a picture; some encoders make a dozen.
constexpr int mostScans = 200;

/// The library's errors leave through a jump, over frames that hold nothing to be released.
class Errors {
  public:
    Errors() {
        jpeg_std_error(&manager_);
        manager_.error_exit = leave;
        manager_.emit_message = judge;
    }
    Errors(const Errors&) = delete;
    Errors& operator=(const Errors&) = delete;

    jpeg_error_mgr* manager() { return &manager_; }

    /// Runs calls of the library, none of which leaves anything on the stack that must be destroyed.
    template <class Calls> void guard(const char* what, Calls calls) {
        if (setjmp(jump_) != 0) {
            if (manager_.msg_code == JERR_OUT_OF_MEMORY) throw std::bad_alloc();
            throw Failure(std::string(what) + text_.data());
        }
        calls();
    }

    [[noreturn]] static void leave(j_common_ptr library) {
        // The manager is the first member.
        auto* errors = reinterpret_cast<Errors*>(library->err);
        errors->manager_.format_message(library, errors->text_.data());
        std::longjmp(errors->jump_, 1);
    }

  private:
    /// What the library only warns of is made up for with grey, so it is an error here, but for what leaves the
    /// pixels as they are.
    static void judge(j_common_ptr library, int level) {
        if (level >= 0) return;
        switch (library->err->msg_code) {
        case JWRN_ADOBE_XFORM:
        case JWRN_EXTRANEOUS_DATA:
        case JWRN_JFIF_MAJOR:
            return;
        default:
            leave(library);
        }
    }

    jpeg_error_mgr manager_{};
    std::jmp_buf jump_{};
    std::array<char, JMSG_LENGTH_MAX> text_{};
};

class Decoder {
  public:
    explicit Decoder(std::string_view bytes) {
        library_.err = errors_.manager();
        errors_.guard("", [&] { jpeg_create_decompress(&library_); });
        source_.next_input_byte = reinterpret_cast<const JOCTET*>(bytes.data());
        source_.bytes_in_buffer = bytes.size();
        source_.init_source = [](j_decompress_ptr) {};
        // There is nothing after the end: the library returns to its caller.
        source_.fill_input_buffer = [](j_decompress_ptr) -> boolean { return FALSE; };
        source_.skip_input_data = [](j_decompress_ptr library, long count) {
            const auto skipped =
                std::min(library->src->bytes_in_buffer, static_cast<std::size_t>(std::max(count, 0L)));
            library->src->next_input_byte += skipped;
            library->src->bytes_in_buffer -= skipped;
        };
        source_.resync_to_restart = jpeg_resync_to_restart;
        source_.term_source = [](j_decompress_ptr) {};
        library_.src = &source_;
        progress_.progress_monitor = [](j_common_ptr library) {
            if (reinterpret_cast<j_decompress_ptr>(library)->input_scan_number > mostScans)
                ERREXIT(library, JERR_BAD_PROGRESSION);
        };
        library_.progress = &progress_;
    }
    ~Decoder() { jpeg_destroy_decompress(&library_); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    std::optional<PictureHeader> header() {
        int state = JPEG_SUSPENDED;
        errors_.guard("is damaged: ", [&] { state = jpeg_read_header(&library_, TRUE); });
        if (state == JPEG_SUSPENDED) return std::nullopt;
        return PictureHeader(library_.image_width, library_.image_height);
    }

    /// The library makes up for tables of codes that the file does not have.
    void expectTables() const {
        const auto isThere = [](JHUFF_TBL* const* tables, int number) {
            return number >= 0 && number < NUM_HUFF_TBLS && tables[number] != nullptr;
        };
        const bool isProgressive = library_.progressive_mode != FALSE;
        for (int i = 0; i < library_.comps_in_scan; ++i) {
            const jpeg_component_info& component = *library_.cur_comp_info[i];
            // A scan of a progressive file has either the means of the squares or the rest.
            const bool hasMeans = !isProgressive || library_.Ss == 0;
            const bool hasRest = !isProgressive || library_.Ss > 0;
            if ((hasMeans && !isThere(library_.dc_huff_tbl_ptrs, component.dc_tbl_no)) ||
                (hasRest && !isThere(library_.ac_huff_tbl_ptrs, component.ac_tbl_no)))
                throw Failure("is damaged: a table of codes is missing");
        }
    }

    /// Every square takes a bit at least in the code that this build reads.
    void expectEnough(std::size_t bytes, const PictureHeader& size) {
        if (library_.arith_code != FALSE) throw Failure("cannot be decoded: its code is arithmetic");
        const std::int64_t squares = (size.width + side - 1) / side * ((size.height + side - 1) / side);
        if (squares > static_cast<std::int64_t>(bytes) * 8)
            throw Failure("is damaged: its data cannot fill " + size.size + " pixels");
    }

    /// Once the header has been read.
    Picture picture() {
        const bool isGrey = library_.jpeg_color_space == JCS_GRAYSCALE;
        const bool isPrint = library_.num_components == 4;
        library_.out_color_space = isGrey ? JCS_GRAYSCALE : isPrint ? JCS_CMYK : JCS_RGB;
        bool whole = false;
        errors_.guard("is damaged: ", [&] { whole = jpeg_start_decompress(&library_) != FALSE; });
        if (!whole) throw CutShort();
        Picture result(static_cast<int>(library_.output_width), static_cast<int>(library_.output_height),
                       isGrey ? 1 : 3);
        std::vector<Lum8u> inks(isPrint ? std::size_t{4} * library_.output_width : 0);
        errors_.guard("is damaged: ", [&] {
            for (int y = 0; y < result.height; ++y) {
                JSAMPROW row = isPrint ? inks.data() : result.row(y);
                if (jpeg_read_scanlines(&library_, &row, 1) != 1) return;
                if (isPrint) mixInks(inks.data(), result.row(y));
            }
            whole = jpeg_finish_decompress(&library_) != FALSE;
        });
        if (!whole || library_.output_scanline != library_.output_height) throw CutShort();
        return result;
    }

  private:
    /// Four inks as red, green and blue. The program that made them common stores what is left white.
    void mixInks(const Lum8u* inks, Lum8u* row) const {
        const int flip = library_.saw_Adobe_marker != FALSE ? 0 : 255;
        for (JDIMENSION x = 0; x < library_.output_width; ++x, inks += 4, row += 3)
            for (int c = 0; c < 3; ++c)
                row[c] = static_cast<Lum8u>(((inks[c] ^ flip) * (inks[3] ^ flip) + 127) / 255);
    }

    Errors errors_;
    jpeg_decompress_struct library_{};
    jpeg_source_mgr source_{};
    jpeg_progress_mgr progress_{};
};

class Encoder {
  public:
    Encoder() {
        library_.err = errors_.manager();
        errors_.guard("", [&] { jpeg_create_compress(&library_); });
    }
    ~Encoder() {
        jpeg_destroy_compress(&library_);
        std::free(buffer_);
    }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    std::string bytes(const Picture& picture) {
        errors_.guard("cannot be encoded: ", [&] { write(picture); });
        return {reinterpret_cast<const char*>(buffer_), size_};
    }

  private:
    void write(const Picture& picture) {
        jpeg_mem_dest(&library_, &buffer_, &size_);
        library_.image_width = static_cast<JDIMENSION>(picture.width);
        library_.image_height = static_cast<JDIMENSION>(picture.height);
        library_.input_components = picture.channels;
        library_.in_color_space = picture.channels == 3 ? JCS_RGB : JCS_GRAYSCALE;
        jpeg_set_defaults(&library_);
        jpeg_set_quality(&library_, quality, TRUE);
        jpeg_start_compress(&library_, TRUE);
        for (int y = 0; y < picture.height; ++y) {
            JSAMPROW row = const_cast<JSAMPROW>(picture.row(y));
            jpeg_write_scanlines(&library_, &row, 1);
        }
        jpeg_finish_compress(&library_);
    }

    Errors errors_;
    jpeg_compress_struct library_{};
    unsigned char* buffer_ = nullptr;
    unsigned long size_ = 0;
};

} // namespace

std::optional<PictureHeader> jpegHeader(std::string_view bytes) { return Decoder(bytes).header(); }

Picture readJpeg(std::string_view bytes) {
    Decoder decoder(bytes);
    const std::optional<PictureHeader> header = decoder.header();
    if (!header) throw CutShort();
    expectReasonable(*header);
    decoder.expectEnough(bytes.size(), *header);
    decoder.expectTables();
    return decoder.picture();
}

std::string jpegBytes(const Picture& picture) { return Encoder().bytes(picture); }

} // namespace tools
