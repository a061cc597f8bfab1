// Changes to calls that the bytes of a fuzzer decide. None asks the caller for memory that is not there: see `freedom.h`.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "choices.h"
#include "digest/memory.h"
#include "library/contract/calls.h"

namespace fuzz {

/// What the calls of a sequence share.
class Sequence {
  public:
    explicit Sequence(Choices& choices) : choices_(choices) {}

    /// Gives the shared arguments of a call the values that the sequence has for them. Tells whether any is another.
    bool share(contract::Call& call);
    /// Lets the lists that the call reads be others, in memory of exactly their size.
    void replaceLists(contract::Call& call);

  private:
    Choices& choices_;
    std::map<std::pair<std::string, std::vector<double>>, std::vector<double>> shared_;
    std::vector<std::unique_ptr<digest::Block>> lists_;
};

/// One argument that may have any value gets another. Tells whether there was one.
bool changeFreely(contract::Call& call, Choices& choices);

/// One argument of any kind gets another value; the call must not be relied on to succeed.
void changeAny(contract::Call& call, Choices& choices);

/// New contents for the images that a call reads, within their regions.
void replaceContents(const contract::Call& call, Choices& choices);

} // namespace fuzz
