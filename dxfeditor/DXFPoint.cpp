#include "dxfeditor/DXFPoint.h"

int DXFPoint::type() const {
    return DXFEntityType::Point;
}

void DXFPoint::setup() {}

DXFEntity* DXFPoint::clone() const {
    return new DXFPoint(*this);
}
