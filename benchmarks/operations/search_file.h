#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Names of every kind bear this many rows, found by name, by count or by length, however large the
/// file is. They are spread evenly over the tables.
inline constexpr std::int64_t kFew = 100;
inline constexpr char kWantedName[] = "wanted";
inline constexpr int kWantedCount = 7;
inline constexpr int kRareCount = 9;  ///< of variables with internal linkage, and of rare names
inline constexpr std::size_t kRareLength = 30;
inline constexpr int kWantedType = 5000;  ///< row id of a type with a reference

/// The path of a compilation database with so many rows (a multiple of 10000) in each table but
/// File and with all search indexes; made in the temporary directory at the first call. Ends the
/// program when it cannot be made.
std::string searchFile(std::int64_t rows);
void removeSearchFiles();
