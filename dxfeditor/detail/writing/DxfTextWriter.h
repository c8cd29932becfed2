#pragma once

#include <dxflib/dl_writer_ascii.h>
#include <opencv2/core/types.hpp>

#include <string>
#include <vector>

namespace dxfeditor {

/// Appends the object of a point: `head`, which holds the groups before the coordinates, then the
/// coordinates.
void appendPoint(const std::string& head, const cv::Point3_<double>& point, std::string& text);

/// dxflib's writer with a text of its own in place of the file: the same bytes for every group,
/// but safe for every real, independent of locales and without a flush after each number.
class DxfTextWriter : public DL_WriterA {
public:
    explicit DxfTextWriter(DL_Codes::version dxfVersion);
    ~DxfTextWriter() override;

    DL_Codes::version dxfVersion() const { return version; }

    /// The groups written so far; in a derived writer those that it still holds.
    const std::string& text() const { return m_text; }

    void dxfReal(int gc, double value) const override;
    void dxfInt(int gc, int value) const override;
    void dxfHex(int gc, int value) const override;
    /// A null pointer is written like an empty text.
    void dxfString(int gc, const char* value) const override;
    void dxfString(int gc, const std::string& value) const override;

    /// What DL_Dxf::writePoint writes of a POINT before the coordinates, in release R12. It does
    /// not go into the text.
    std::string pointHead(const DL_Attributes& attributes) const;

    /// One POINT per point, as DL_Dxf::writePoint writes it in release R12, but what comes before
    /// the coordinates is spelled once for all.
    void writePoints(const DL_Attributes& attributes,
                     const std::vector<cv::Point3_<double>>& points) const;

protected:
    /// Text is handed on in blocks of about this size.
    static constexpr std::size_t textBlockSize = std::size_t{1} << 18;

    /// Called after each group; a derived writer may take the text away.
    virtual void groupWritten() const {}
    /// Takes many groups that were written elsewhere, behind the text.
    virtual void takeBlock(const char* groups, std::size_t length) const {
        m_text.append(groups, length);
    }

    mutable std::string m_text;

private:
    void append(int gc, const char* value, std::size_t length) const;
    class Apart;

    mutable bool m_isApart = false;
};

} // namespace dxfeditor
