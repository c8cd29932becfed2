#pragma once

#include <dxflib/dl_creationadapter.h>

#include <string>
#include <vector>

class DXFDocument;
class DXFEntity;

/// The entity in one line: its kind, its numbers to the last bit, its attributes.
std::string describe(const DXFEntity& entity);

/// The layers and entities of a document, one a line.
std::string describe(const DXFDocument& document);

/// Records the callbacks that a drawing reader takes, in the order in which they come, each with
/// the attributes reported for it. Not endEntity and endSection, which also belong to objects that
/// no drawing reader takes.
class CallbackRecorder : public DL_CreationAdapter {
public:
    std::vector<std::string> calls;

    void addLayer(const DL_LayerData& data) override;
    void addLinetype(const DL_LinetypeData& data) override;
    void addBlock(const DL_BlockData& data) override;
    void endBlock() override;
    void addPoint(const DL_PointData& data) override;
    void addLine(const DL_LineData& data) override;
    void addCircle(const DL_CircleData& data) override;
    void addArc(const DL_ArcData& data) override;
    void addPolyline(const DL_PolylineData& data) override;
    void addVertex(const DL_VertexData& data) override;
    void addSpline(const DL_SplineData& data) override;
    void addControlPoint(const DL_ControlPointData& data) override;
    void addKnot(const DL_KnotData& data) override;
    void addFitPoint(const DL_FitPointData& data) override;

private:
    void record(const std::string& name, const std::vector<double>& numbers);
};
