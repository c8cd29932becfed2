#pragma once

#include "dxfeditor/DXFReader.h"

#include <string>

/// Lets dxflib parse a text by itself, and report to `reader`.
void parseWithDxflib(const std::string& text, DL_CreationInterface& reader);

/// A drawing reader for dxflib by itself, which also calls endEntity for objects that are no
/// entities of the model: it passes over those calls.
class BareReader : public DXFReader {
public:
    using DXFReader::DXFReader;

    void addLeader(const DL_LeaderData&) override { m_foreign = true; }
    void addHatch(const DL_HatchData&) override { m_foreign = true; }
    void addImage(const DL_ImageData&) override { m_foreign = true; }
    void linkImage(const DL_ImageDefData&) override { m_foreign = true; }

    void endEntity() override {
        if (!m_foreign) {
            DXFReader::endEntity();
        }
        m_foreign = false;
    }

private:
    bool m_foreign = false;
};
