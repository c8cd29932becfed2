#include "tools/cloudconv/StandardOutput.h"

#include "tools/cloudconv/OutputFile.h"

void printToStandardOutput(const std::string& text) {
    OutputFile file("-");
    file.write(text.data(), text.size());
    file.commit();
}
