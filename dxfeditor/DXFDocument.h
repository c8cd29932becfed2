#pragma once

#include "dxfeditor/Export.h"

#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

class DXFEntity;
class DXFLayer;
class DXFLineType;

/// A drawing in memory: layers, line types and entities, each in the order in which they were
/// added and shared with whoever else holds them.
///
/// A new document is empty; it has no layer "0" either. It must not be changed while another
/// thread uses it.
class DXFEDITOR_EXPORT DXFDocument {
public:
    /// Reads a DXF file through DXFReader; setup() is left to the caller.
    ///
    /// @return the drawing, or an empty pointer when the file cannot be opened or read
    /// @throws std::bad_alloc when the drawing does not fit into memory
    static std::shared_ptr<DXFDocument> load(const std::string& path);

    /// An empty drawing.
    DXFDocument();
    ~DXFDocument();
    DXFDocument(const DXFDocument&) = delete;
    DXFDocument& operator=(const DXFDocument&) = delete;

    /// Appends an entity, also one that is already there or empty. Always true.
    bool addEntity(std::shared_ptr<DXFEntity> entity);

    /// Removes every occurrence of this very object (not of equal ones). Always true, also when
    /// there was none.
    bool deleteEntity(std::shared_ptr<DXFEntity> entity);

    /// Appends a layer, unless one of the same name is there: the first one stays.
    ///
    /// An empty pointer has no name and is appended.
    /// @return false when the name was taken
    bool addLayer(std::shared_ptr<DXFLayer> layer);

    /// Appends a line type by the rules of addLayer().
    bool addLineType(std::shared_ptr<DXFLineType> lineType);

    /// The layer of exactly this name, or an empty pointer.
    std::shared_ptr<DXFLayer> getLayer(const std::string& name) const;

    /// A copy of the list of layers; the layers themselves are shared.
    std::list<std::shared_ptr<DXFLayer>> layers() const;

    /// A copy of the list of entities; the entities themselves are shared.
    std::list<std::shared_ptr<DXFEntity>> entities() const;

    /// Calls setup() on every entity, in order. Only the first call does: entities added later are
    /// not set up.
    void setup();

private:
    using EntityList = std::list<std::shared_ptr<DXFEntity>>;

    std::list<std::shared_ptr<DXFLayer>> m_layers;
    std::list<std::shared_ptr<DXFLineType>> m_lineTypes;
    EntityList m_entities;
    bool m_setupPending = true;

    // Indexes beside the lists: building a drawing of n names or n entities and taking it apart
    // does not cost n². Names come from files, so theirs are trees: no choice of names makes a tree
    // slow.
    std::map<std::string, std::shared_ptr<DXFLayer>> m_layerByName;
    std::map<std::string, std::shared_ptr<DXFLineType>> m_lineTypeByName;
    std::unordered_multimap<const DXFEntity*, EntityList::iterator> m_entityPlaces;
};
