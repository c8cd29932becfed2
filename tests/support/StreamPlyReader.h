#pragma once

#include "tests/support/CapturedLog.h"

#include <pcl/PCLPointCloud2.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

/// A plain PLY reader on standard streams in the classic locale: slow, and simple enough to be seen
/// to be right. Tests compare the library with it.
struct StreamPlyReader {
    pcl::PCLPointCloud2 cloud;
    std::uint64_t vertexCount = 0;
    std::uint64_t lineNumber = 0;
    int format = 2;
    std::size_t position = 0;
    std::vector<LogMessage> messages;

    /// Reads the header of a text without zero bytes, without making room for the data.
    bool readHeader(const std::string& text);

private:
    bool refuse(int level, const std::string& text);
    bool readFormat(std::istringstream& line);
    void readObjInfo(std::istringstream& line);
    bool readElement(std::istringstream& line);
    bool readProperty(std::istringstream& line);
    bool finish(std::size_t inputSize);

    bool m_hasFormat = false;
    bool m_hasVertex = false;
};

/// The bytes of one ASCII record: values of the datatypes by stream extraction, and the words nan,
/// inf and infinity.
std::vector<unsigned char> readRecordByStream(const std::vector<std::uint8_t>& datatypes,
                                              const std::string& line);
