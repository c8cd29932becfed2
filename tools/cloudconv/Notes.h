#pragma once

#include <string>
#include <utility>
#include <vector>

/// What there is to say about a file once all is done.
class Notes {
public:
    /// @param name  the file's, for messages
    explicit Notes(std::string name) : m_name(std::move(name)) {}

    void add(const std::string& note) { m_notes.push_back(note); }

    /// Writes a line to standard error for each.
    void print() const;

private:
    std::string m_name;
    std::vector<std::string> m_notes;
};
