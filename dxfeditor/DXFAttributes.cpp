#include "dxfeditor/DXFAttributes.h"

DXFAttributes::DXFAttributes(const std::string& layerName, int color, int color24, int width,
                             const std::string& lineType, double lineTypeScale, int handle,
                             bool inPaperSpace)
    : m_style(std::make_shared<Style>(
          Style{layerName, lineType, lineTypeScale, color, color24, width, inPaperSpace})),
      m_handle(handle) {}

std::shared_ptr<DXFAttributes> DXFAttributes::withHandle(int handle) const {
    struct Record : DXFAttributes {
        Record(const DXFAttributes& other, int newHandle) : DXFAttributes(other) {
            m_handle = newHandle;
        }
    };
    return std::make_shared<Record>(*this, handle);
}
