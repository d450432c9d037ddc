#pragma once

#include <string>
#include <vector>

/// Other ways to do what `fe_db merge` does, measured beside it. Each folds the sources, in their
/// order, into `target`, an empty compilation database without indexes, and leaves the content that
/// a merge leaves. They take for granted what a merge checks: sound files, no row left out.
/// Failures throw std::runtime_error.
namespace fe_db_benchmarks {

/// The ideal: flat arrays and open addressing, nothing kept that the result does not need, no
/// element classes, no checks. What a merger free of the dataset's structure could reach.
void mergeByHash(const std::vector<std::string>& sources, const std::string& target);

/// The plain way: ATTACH, id maps and upserts in an in-memory database, then one transaction that
/// writes the result, so that the target changes whole or not at all.
void mergeBySql(const std::vector<std::string>& sources, const std::string& target);

}  // namespace fe_db_benchmarks
