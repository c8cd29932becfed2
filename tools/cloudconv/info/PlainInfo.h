#pragma once

#include "tools/cloudconv/info/Info.h"

/// Describes a file as fromPly() and fromDxf() read it.
nlohmann::ordered_json describePlainly(const InfoOptions& options, FileFormat format);
