#include "tools/cloudconv/Notes.h"

#include "tools/cloudconv/StandardError.h"

void Notes::print() const {
    for (const std::string& note : m_notes) {
        printToStandardError(m_name + ": note: " + note);
    }
}
