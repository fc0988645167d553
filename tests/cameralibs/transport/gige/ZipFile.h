#pragma once

#include "tests/cameralibs/transport/gige/Protocol.h"

#include <array>

namespace gige {

/// A zip file with one file in it. Its three records follow one another: the local header with the data, the directory
/// and the end. Numbers are little-endian.
struct ZipFile {
    Bytes bytes;
    std::size_t directory = 0; ///< where the record starts
    std::size_t end = 0;
};

[[nodiscard]] ZipFile zip(const std::string& fileName, const Bytes& content);

/// So much of nothing but spaces, which takes a hundredth of it.
[[nodiscard]] ZipFile zipBomb(const std::string& fileName, std::size_t megabytes);

/// Where the numbers of a record stand in it, with their sizes.
struct ZipField {
    std::size_t offset;
    std::size_t size;
};

inline constexpr std::array kZipLocalFields = {
    ZipField{0, 4},  // signature
    ZipField{4, 2},  // version needed
    ZipField{6, 2},  // flags
    ZipField{8, 2},  // method
    ZipField{14, 4}, // checksum
    ZipField{18, 4}, // compressed size
    ZipField{22, 4}, // uncompressed size
    ZipField{26, 2}, // length of the name
    ZipField{28, 2}, // length of the extra field
};

inline constexpr std::array kZipDirectoryFields = {
    ZipField{0, 4},  // signature
    ZipField{8, 2},  // flags
    ZipField{10, 2}, // method
    ZipField{16, 4}, // checksum
    ZipField{20, 4}, // compressed size
    ZipField{24, 4}, // uncompressed size
    ZipField{28, 2}, // length of the name
    ZipField{30, 2}, // length of the extra field
    ZipField{32, 2}, // length of the comment
    ZipField{34, 2}, // number of the disk
    ZipField{42, 4}, // offset of the local header
};

inline constexpr std::array kZipEndFields = {
    ZipField{0, 4},  // signature
    ZipField{4, 2},  // number of this disk
    ZipField{6, 2},  // number of the directory's disk
    ZipField{8, 2},  // entries on this disk
    ZipField{10, 2}, // entries in all
    ZipField{12, 4}, // size of the directory
    ZipField{16, 4}, // offset of the directory
    ZipField{20, 2}, // length of the comment
};

} // namespace gige
