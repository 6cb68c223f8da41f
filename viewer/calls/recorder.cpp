#include "calls/recorder.hpp"

namespace calls {

thread_local std::vector<Call>* noted = nullptr;

} // namespace calls
