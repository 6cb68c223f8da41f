// What the program and its workers say to each other: a length and a record, over and over.
#pragma once

#include "commands/conversion.hpp"

std::string framed(const Json& message);
// The next whole message of what has arrived; false when there is none yet.
bool take_message(std::string& arrived, Json& message);

Json as_json(const Conversion& conversion);
Conversion conversion_of(const Json& json);
Json as_json(const Job& job);
Job job_of(const Json& json);
Json as_json(const Outcome& outcome);
Outcome outcome_of(const Json& json);
