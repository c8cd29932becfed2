#pragma once

#include "dxfeditor/DXFContour.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFPiece.h"
#include "dxfeditor/Export.h"

#include <opencv2/core/types.hpp>

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace dxfeditor {
class EntityList;
}

/// A drawing in memory: layers, line types and entities, each in the order in which they were
/// added and shared with whoever else holds them.
///
/// A new document is empty; it has no layer "0" either. It must not be changed while another
/// thread uses it.
class DXFEDITOR_EXPORT DXFDocument {
public:
    /// Reads a DXF file, up to its first NUL, through DXFReader; setup() is left to the caller.
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

    /// The drawing as one ordered walk of points; setup() comes first, since a polyline has nothing
    /// to walk before.
    ///
    /// Every entity is sampled into a run of about ten points per drawing unit. Runs whose ends lie
    /// within 0.001 of each other are then joined, so that a contour drawn as many pieces, in any
    /// order and direction, comes out as one: the end that a joined run shares with the walk is
    /// left out, and a contour that returns to its start ends with an exact copy of it. The walks
    /// follow one another, beginning with the one that grew from the last entity; at each step the
    /// entity that was added first goes first where several fit.
    ///
    /// A point (x, y) of the drawing plane becomes (x, 0, y): heights are dropped. Point vectors
    /// are in the coordinates of the cloud already: (x, y, z) becomes (x, y, -z).
    ///
    /// Example: the line from (0, 0) to (1, 0) and, added after it, the one from (1, 1) to (1, 0)
    /// give 21 points, from (1, 0, 1) over (1, 0, 0) to (0, 0, 0).
    ///
    /// The cost grows in proportion to the points, and as n log n with the entities.
    /// @throws std::bad_alloc when the points do not fit the memory, before any is computed
    std::vector<cv::Point3_<double>> getPoints() const;

    /// The same walk, with its contours.
    ///
    /// @param contours  replaced by the stretches of the result that are joined end to end. They
    ///                  follow one another without gaps and cover it. In the example above there is
    ///                  one, of 21 points, not closed.
    /// @throws std::bad_alloc as above; `contours` is then incomplete
    std::vector<cv::Point3_<double>> getPoints(std::vector<DXFContour>& contours) const;

    /// The same walk, with its contours and the entities that they are made of.
    ///
    /// @param contours  as above
    /// @param pieces    replaced by the parts of the result that come of one entity each, in the
    ///                  order of the walk. They follow one another without gaps and cover it. In
    ///                  the example above there are two: 11 points of the second line, then 10 of
    ///                  the first.
    /// @param progress  called with the part of the work that is done, 0 to 1, some hundred times;
    ///                  may be empty. What it throws leaves this function.
    /// @throws std::bad_alloc as above; `contours` and `pieces` are then incomplete
    std::vector<cv::Point3_<double>>
    getPoints(std::vector<DXFContour>& contours, std::vector<DXFPiece>& pieces,
              const std::function<void(double)>& progress = {}) const;

private:
    DXFEDITOR_HIDDEN std::vector<cv::Point3_<double>>
    walk(std::vector<DXFContour>* contours, std::vector<DXFPiece>* pieces,
         const std::function<void(double)>& progress) const;

    std::list<std::shared_ptr<DXFLayer>> m_layers;
    std::list<std::shared_ptr<DXFLineType>> m_lineTypes;
    std::unique_ptr<dxfeditor::EntityList> m_entities;
    bool m_setupPending = true;

    // Indexes beside the lists: building a drawing of n names does not cost n². Names come from
    // files, so these are trees: no choice of names makes a tree slow.
    std::map<std::string, std::shared_ptr<DXFLayer>> m_layerByName;
    std::map<std::string, std::shared_ptr<DXFLineType>> m_lineTypeByName;
};
