#pragma once

#include <boost/filesystem/path.hpp>

#include <string>

/// Fixed paths of the product.
namespace mpaths {

/// The product's base temporary directory, "/var/tmp/melgrav/tarnowell3", without a trailing
/// separator. Does not touch the file system.
inline std::string getTMP_DIRECTORY() {
    boost::filesystem::path directory("/");
    directory /= "var";
    directory /= "tmp";
    directory /= "melgrav";
    directory /= "tarnowell3";
    return directory.string();
}

} // namespace mpaths
