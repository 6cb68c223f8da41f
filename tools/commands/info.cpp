// kirvo info: what the headers of files say.
#include "commands/commands.hpp"
#include "commands/description.hpp"
#include "commands/naming.hpp"
#include "system/names.hpp"
#include "system/settings.hpp"
#include "system/terminal.hpp"

#include <cstdio>

namespace {

struct InfoOptions {
    std::vector<std::string> names;
    bool recursive = false, tables = false;
};

bool print_info(const InfoOptions& wanted) {
    Json all = Json::array();
    bool good = true;
    for (const Found& input : inputs_of(wanted.names, wanted.recursive)) {
        try {
            const Json record = describe(input.name);
            if (settings.json)
                all.push_back(record);
            else
                std::fputs((wanted.tables ? in_tables(record) : in_a_line(record)).c_str(), stdout);
        } catch (const std::exception& error) {
            complain(error.what());
            all.push_back(error_record(input.name, error));
            good = false;
        }
    }
    if (settings.json)
        print_json(all);
    return good;
}

} // namespace

void add_info(Command& program, bool& good) {
    static InfoOptions wanted;
    Command* command = program.add("info", "Describes picture files");
    command->usage = {"[options] FILE..."};
    command->examples = {"kirvo info photo.jpg icon.ico", "kirvo info -r photos --json",
                         "kirvo info --long photo.jpg", "kirvo info - <photo.jpg"};
    command->notes = "Only headers are read: a line a picture, or everything with --long and "
                     "--json.";
    command->add_option("FILE", wanted.names, "Pictures; - is standard input")
        ->type_name("FILE")
        ->required();
    command->add_flag("-r,--recursive", wanted.recursive, "Take the pictures in folders");
    command->add_flag("-l,--long", wanted.tables, "Tell everything, tables too");
    command->callback([&good] { good = print_info(wanted); });
}
