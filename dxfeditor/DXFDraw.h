#pragma once

#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFWriter.h"
#include "dxfeditor/Export.h"

#include <memory>
#include <string>
#include <vector>

/// Builds one drawing and writes it to a file.
///
/// To write entities of one's own:
///
///     DXFDraw draw(path);
///     draw.setupFile();
///     draw.document.addEntity(entity);
///     draw.saveFile();
class DXFEDITOR_EXPORT DXFDraw {
public:
    /// @param outputPath  file that saveFile() and drawPoly() write
    explicit DXFDraw(const std::string& outputPath);
    ~DXFDraw();
    DXFDraw(const DXFDraw&) = delete;
    DXFDraw& operator=(const DXFDraw&) = delete;

    /// Replaces the path of the file to write.
    void setPath(const std::string& outputPath);

    /// Makes the drawing's layer, named "1", and adds it to the document. To be called once.
    /// @return false when the document has a layer of that name already
    bool setupFile();

    /// Appends an open polyline without vertices, of width 10 on layer "1", to the entities of the
    /// builder. It comes into the document with drawPoly().
    void createEntity();

    /// Appends the corners of a sample rectangle, (1.5, 1), (10, 1), (10, 10) and (1.5, 10), to the
    /// last of the builder's entities, adds it to the document (each time anew) and writes the
    /// file.
    ///
    /// Without entities it creates one first: unlike createEntity(), a closed polyline without
    /// attributes.
    /// @return the result of DXFWriter::save
    /// @throws std::bad_cast when the last entity is not a polyline
    bool drawPoly();

    /// Takes the builder's entities out of the document. The builder keeps them: a later
    /// drawPoly() draws into the last one again and adds it back.
    void clean();

    /// Writes the document to the file.
    /// @return the result of DXFWriter::save
    bool saveFile();

    /// File that saveFile() and drawPoly() write.
    std::string path;
    /// The drawing.
    DXFDocument document;
    /// The drawing's layer; empty before setupFile().
    std::shared_ptr<DXFLayer> layer;
    /// Entities that createEntity(), drawPoly() or the caller created, in this order.
    std::vector<std::shared_ptr<DXFEntity>> entities;
    /// Writes `document`.
    DXFWriter writer;
};
