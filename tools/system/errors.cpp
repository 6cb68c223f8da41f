#include "system/errors.hpp"

#include "system/settings.hpp"

Failure::Failure(const std::string& subject, const std::string& reason, int32_t status)
    : std::runtime_error(
          subject + ": " + reason +
          (status != 0 && settings.verbose ? " (status " + std::to_string(status) + ")" : "")),
      subject_(subject), reason_(reason), status_(status) {}
