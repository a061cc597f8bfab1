// What memory held before a call.
#pragma once

#include <algorithm>
#include <vector>

#include "digest/memory.h"
#include "library/contract/calls.h"

namespace contract {

/// The block of this thread that a place is in, null where it is in none. The place of an empty block is in it, too.
inline const digest::Block* blockOf(const void* place) {
    for (const digest::Block* block : digest::Block::living())
        if (block->contains(place) || place == block->data()) return block;
    return nullptr;
}

/// All memory that a call may reach: the living blocks, and what arguments point to elsewhere.
class Snapshot {
  public:
    explicit Snapshot(const Call& call) {
        for (const digest::Block* block : digest::Block::living()) keep(block->data(), block->size());
        for (std::size_t i = 0; i < call.arguments.size(); ++i) {
            const Type& type = call.callee->types[i];
            if (!type.isPointer() || call.arguments[i].pointer() == nullptr) continue;
            auto* place = static_cast<unsigned char*>(call.arguments[i].pointer());
            if (blockOf(place) == nullptr) keep(place, type.pointee);
        }
    }
    /// Whether all is as it was; pieces that begin at one of the places may have changed.
    bool isAsItWas(const std::vector<const void*>& written) const {
        for (const Piece& piece : pieces_)
            if (std::memcmp(piece.place, piece.bytes.data(), piece.bytes.size()) != 0 &&
                std::count(written.begin(), written.end(), piece.place) == 0)
                return false;
        return true;
    }
    void restore() const {
        for (const Piece& piece : pieces_)
            if (std::memcmp(piece.place, piece.bytes.data(), piece.bytes.size()) != 0)
                std::memcpy(piece.place, piece.bytes.data(), piece.bytes.size());
    }

  private:
    struct Piece {
        unsigned char* place;
        std::vector<unsigned char> bytes;
    };
    void keep(unsigned char* place, std::size_t bytes) {
        if (bytes > 0) pieces_.push_back({place, {place, place + bytes}});
    }

    std::vector<Piece> pieces_;
};

} // namespace contract
