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

void FileTable::included(clang::SourceLocation directive, const clang::FileEntry& header,
                         bool isFoundInSystemDirectory) {
  const clang::FileEntry* includer = sources.getFileEntryForID(sources.getFileID(directive));
  systemHeaders.included(includer, header, isFoundInSystemDirectory);
}

void FileTable::settleKinds() {
  systemHeaders.settle(sources.getFileEntryForID(sources.getMainFileID()));
  for (const auto& [entry, file] : byEntry) {
    if (systemHeaders.isSystem(*entry)) file->setKind(kinds::kSystemHeader);
  }
}

dm::FileKind FileTable::kindOf(clang::FileID id) const {
  if (id == sources.getMainFileID()) return kinds::kMainSource;
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

WrittenPlace FileTable::written(clang::SourceLocation at) const {
  WrittenPlace place{at};
  while (place.at.isMacroID()) {
    const clang::SrcMgr::ExpansionInfo& expansion =
        sources.getSLocEntry(sources.getFileID(place.at)).getExpansion();
    if (expansion.isMacroArgExpansion()) {
      place.at = sources.getImmediateSpellingLoc(place.at);
    } else {
      place = {expansion.getExpansionLocStart(), /*isThroughBody=*/true};
    }
  }
  return place;
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
  if (at.isInvalid()) return false;
  const clang::SourceLocation inFile = sources.getExpansionLoc(at);
  const clang::FileID id = sources.getFileID(inFile);
  const clang::FileEntry* entry = sources.getFileEntryForID(id);
  // The line markers of a preprocessed source have the paths that its headers had.
  const bool isMarked = entry == nullptr || id == sources.getMainFileID();
  return isMarked ? sources.isInSystemHeader(inFile) : systemHeaders.isSystem(*entry);
}

}  // namespace fe_db_tools
