#include "dxfeditor/DXFAttributes.h"

DXFAttributes::DXFAttributes(const std::string& layerName, int color, int color24, int width,
                             const std::string& lineType, double lineTypeScale, int handle,
                             bool inPaperSpace)
    : m_layerName(layerName), m_color(color), m_color24(color24), m_width(width),
      m_lineType(lineType), m_lineTypeScale(lineTypeScale), m_handle(handle),
      m_inPaperSpace(inPaperSpace) {}
