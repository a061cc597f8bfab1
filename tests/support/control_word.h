// The control word of vector arithmetic (MXCSR): rounding, denormals, and the flags and masks of exceptions.
#pragma once

#include <xmmintrin.h>

namespace support {

/// While it lives, the control word is a caller's; afterwards it is the one from before.
class ControlWord {
  public:
    explicit ControlWord(unsigned word) : before_(_mm_getcsr()) {
        _mm_setcsr(word);
        found_ = _mm_getcsr();
    }
    ~ControlWord() { _mm_setcsr(before_); }
    ControlWord(const ControlWord&) = delete;
    ControlWord& operator=(const ControlWord&) = delete;

    /// What a call finds, read back: on a processor it is the word that was set, while an emulator of the processor may
    /// keep the rounding mode only.
    unsigned found() const { return found_; }
    unsigned now() const { return _mm_getcsr(); }
    /// The bits that are not as found.
    unsigned changed() const { return found() ^ now(); }

  private:
    unsigned before_;
    unsigned found_;
};

/// Whether the machine has the flags of exceptions, as every processor does: it keeps those that are set.
inline bool hasExceptionFlags() {
    constexpr unsigned flagsAndMasks = 0x1FBF;
    return ControlWord(flagsAndMasks).found() == flagsAndMasks;
}

} // namespace support
