#pragma once

#include "dxfeditor/DXFEntity.h"

/// A single point, in drawing units.
class DXFEDITOR_EXPORT DXFPoint : public DXFEntity {
public:
    /// A point at (x, y, z).
    DXFPoint(double x, double y, double z) : m_x(x), m_y(y), m_z(z) {}

    int type() const override;
    /// Does nothing.
    void setup() override;
    DXFEntity* clone() const override;

    /// Coordinate x, as given.
    double mX() const { return m_x; }
    /// Coordinate y, as given.
    double mY() const { return m_y; }
    /// Coordinate z, as given.
    double mZ() const { return m_z; }

private:
    double m_x;
    double m_y;
    double m_z;
};
