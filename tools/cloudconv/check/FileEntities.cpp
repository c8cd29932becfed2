#include "tools/cloudconv/check/FileEntities.h"

#include "dxfeditor/text/DxfObjects.h"
#include "tools/cloudconv/DxfText.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>

namespace {

using dxfeditor::DxfGroup;
using dxfeditor::DxfGroups;
using dxfeditor::DxfObject;
using dxfeditor::DxfObjectKind;

double numberOf(const DxfGroup& group) {
    return std::strtod(std::string(group.value).c_str(), nullptr);
}

std::string lower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return result;
}

/// Whether a kind that the walk does not take draws lines or surfaces.
bool isGeometry(std::string_view name) {
    constexpr std::array<std::string_view, 15> names = {
        "INSERT", "ELLIPSE", "HELIX", "MLINE", "RAY",     "XLINE", "3DFACE",  "3DSOLID",
        "BODY",   "REGION",  "MESH",  "SOLID", "SURFACE", "TRACE", "POLYMESH"};
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isWalked(DxfObjectKind kind) {
    return kind == DxfObjectKind::Point || kind == DxfObjectKind::Line ||
           kind == DxfObjectKind::Circle || kind == DxfObjectKind::Arc ||
           kind == DxfObjectKind::Polyline || kind == DxfObjectKind::LwPolyline ||
           kind == DxfObjectKind::Spline;
}

class Reading {
public:
    void take(const DxfObject& object) {
        if (object.kind == DxfObjectKind::Layer) {
            takeLayer(object);
        } else if (object.kind == DxfObjectKind::Block || object.kind == DxfObjectKind::BlockEnd) {
            m_inBlock = object.kind == DxfObjectKind::Block;
        } else if (m_inBlock) {
            return;
        } else if (object.kind == DxfObjectKind::Vertex) {
            takeVertex(object);
        } else if (isWalked(object.kind)) {
            takeWalked(object);
        } else if (isGeometry(trimmed(object.name))) {
            endPolyline();
            m_found.passedOver.push_back(entityOf(object));
        }
    }

    FileEntities result() {
        endPolyline();
        return std::move(m_found);
    }

private:
    void takeLayer(const DxfObject& object) {
        DxfGroups groups(object.groups);
        std::string name;
        bool hidden = false;
        for (DxfGroup group; groups.next(group);) {
            if (group.code == 2) {
                name = lower(trimmed(group.value));
            } else if (group.code == 62) {
                hidden = hidden || numberOf(group) < 0.0;
            } else if (group.code == 70) {
                hidden = hidden || dxfeditor::dxfInteger(group.value) % 2 != 0;
            }
        }
        if (hidden) {
            m_hiddenLayers.insert(name);
        }
    }

    void takeWalked(const DxfObject& object) {
        endPolyline();
        const bool isPoint = object.kind == DxfObjectKind::Point;
        if (!isPoint || !m_lastIsPoint) {
            m_found.walked.push_back(entityOf(object));
        }
        m_lastIsPoint = isPoint;
        m_inPolyline = object.kind == DxfObjectKind::Polyline;
        if (object.kind == DxfObjectKind::LwPolyline) {
            m_inPolyline = true;
            endPolyline();
        }
    }

    void takeVertex(const DxfObject& object) {
        if (!m_inPolyline) {
            return;
        }
        FileEntity& polyline = m_found.walked.back();
        FileEntity vertex = entityOf(object);
        if (polyline.vertices++ == 0) {
            polyline.x = vertex.x;
            polyline.y = vertex.y;
        }
        polyline.bulges += m_lastBulged ? 1 : 0;
    }

    /// The last vertex of an open polyline begins no edge.
    void endPolyline() {
        if (m_inPolyline && m_lastBulged && m_found.walked.back().flags % 2 == 0) {
            --m_found.walked.back().bulges;
        }
        m_inPolyline = false;
        m_lastBulged = false;
    }

    FileEntity entityOf(const DxfObject& object);
    void take(const DxfGroup& group, bool isLightweight, FileEntity& entity);

    FileEntities m_found;
    std::set<std::string> m_hiddenLayers;
    bool m_inBlock = false;
    bool m_lastIsPoint = false;
    bool m_inPolyline = false;
    bool m_lastBulged = false;
};

FileEntity Reading::entityOf(const DxfObject& object) {
    FileEntity entity;
    entity.named.kind = trimmed(object.name);
    entity.named.layer = "0";
    m_lastBulged = false;
    DxfGroups groups(object.groups);
    for (DxfGroup group; groups.next(group);) {
        take(group, object.kind == DxfObjectKind::LwPolyline, entity);
    }
    entity.onHiddenLayer = m_hiddenLayers.count(lower(entity.named.layer)) > 0;
    return entity;
}

void Reading::take(const DxfGroup& group, bool isLightweight, FileEntity& entity) {
    switch (group.code) {
    case 5:
        entity.named.handle = std::strtoull(std::string(group.value).c_str(), nullptr, 16);
        break;
    case 8:
        entity.named.layer = trimmed(group.value);
        break;
    case 10:
        ++entity.controlPoints;
        entity.vertices += isLightweight ? 1 : 0;
        entity.x = entity.controlPoints == 1 ? numberOf(group) : entity.x;
        m_lastBulged = false;
        break;
    case 20:
        entity.y = entity.controlPoints == 1 ? numberOf(group) : entity.y;
        break;
    case 11:
        ++entity.fitPoints;
        break;
    case 42:
        m_lastBulged = numberOf(group) != 0.0;
        entity.bulges += isLightweight && m_lastBulged ? 1 : 0;
        break;
    case 60:
        entity.invisible = dxfeditor::dxfInteger(group.value) != 0;
        break;
    case 67:
        entity.inPaperSpace = dxfeditor::dxfInteger(group.value) != 0;
        break;
    case 70:
        entity.flags = dxfeditor::dxfInteger(group.value);
        break;
    case 210:
    case 220:
    case 230:
        entity.extrusion[static_cast<std::size_t>(group.code - 210) / 10] = numberOf(group);
        break;
    default:
        break;
    }
}

} // namespace

FileEntities fileEntitiesOf(std::string_view text) {
    Reading reading;
    dxfeditor::DxfObjects objects(text.substr(0, text.find('\0')));
    DxfObject object;
    while (objects.next(object)) {
        if (object.complete) {
            reading.take(object);
        }
    }
    return reading.result();
}
