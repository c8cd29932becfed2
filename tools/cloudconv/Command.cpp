#include "tools/cloudconv/Command.h"

void addFormatOption(CLI::App& command, const std::string& name, std::optional<FileFormat>& format,
                     const std::string& description) {
    CLI::CheckedTransformer known(fileFormatNames(), CLI::ignore_case);
    known.description("");
    command.add_option(name, format, description)->type_name("FORMAT")->transform(known);
}

void addQuietFlag(CLI::App& command, bool& quiet) {
    command.add_flag("-q,--quiet", quiet, "say nothing but failures")->disable_flag_override();
}
