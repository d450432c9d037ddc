#include "file_table.h"

#include <filesystem>
#include <string>

#include "clang/Basic/SourceManager.h"
#include "fe_db/file.h"

namespace fe_db_tools {

namespace {

std::string physicalPath(const std::string& name) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(name, error);
  if (!error) return real.string();
  return std::filesystem::absolute(name).lexically_normal().string();
}

}  // namespace

dm::File* FileTable::file(clang::FileID id) {
  auto known = files.find(id);
  if (known != files.end()) return known->second;
  dm::File* file = nullptr;
  if (const auto entry = sources.getFileEntryRefForID(id)) {
    dm::File*& same = byEntry[&entry->getFileEntry()];
    if (same == nullptr)
      same = sink.file(physicalPath(entry->getName().str()), kindOf(id), language);
    file = same;
  }
  return files[id] = file;
}

void FileTable::becomesSystemHeader(clang::FileID id) {
  dm::File* known = file(id);
  if (known != nullptr && known->getKind() != kinds::kMainSource) {
    known->setKind(kinds::kSystemHeader);
  }
}

dm::FileKind FileTable::kindOf(clang::FileID id) const {
  if (id == sources.getMainFileID()) return kinds::kMainSource;
  const clang::SourceLocation start = sources.getLocForStartOfFile(id);
  if (clang::SrcMgr::isSystem(sources.getFileCharacteristic(start))) return kinds::kSystemHeader;
  const clang::SourceLocation includedAt = sources.getIncludeLoc(id);
  // -include becomes a directive in the buffer of the predefined macros.
  const bool isForced =
      includedAt.isValid() && !sources.getFileEntryRefForID(sources.getFileID(includedAt));
  return isForced ? kinds::kForcedInclude : kinds::kUserHeader;
}

dm::Localization FileTable::locateInFile(clang::SourceLocation at) {
  const auto [id, offset] = sources.getDecomposedLoc(at);
  dm::File* in = file(id);
  if (in == nullptr) return {};
  return {in, sources.getLineNumber(id, offset), sources.getColumnNumber(id, offset)};
}

dm::Localization FileTable::locate(clang::SourceLocation at) {
  if (at.isInvalid()) return {};
  return locateInFile(sources.getFileLoc(at));
}

dm::Localization FileTable::locateSpelling(clang::SourceLocation at) {
  const clang::SourceLocation spelled = sources.getSpellingLoc(at);
  dm::Localization position = locateInFile(spelled);
  if (position.file == nullptr) {
    position.column = sources.isWrittenInCommandLineFile(spelled) ? kinds::kCommandLineColumn
                                                                  : kinds::kPredefinedColumn;
  }
  return position;
}

bool FileTable::isInSystemHeader(clang::SourceLocation at) const {
  return at.isValid() && sources.isInSystemHeader(sources.getExpansionLoc(at));
}

}  // namespace fe_db_tools
