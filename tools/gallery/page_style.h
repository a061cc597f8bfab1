// How the page looks, and what it does when it is pointed at.
#pragma once

namespace tools {

extern const char pageStyle[];
extern const char pageScript[];

} // namespace tools
