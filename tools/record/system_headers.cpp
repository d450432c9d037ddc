#include "system_headers.h"

namespace fe_db_tools {

void SystemHeaders::included(const clang::FileEntry* includer, const clang::FileEntry& header,
                             bool isFoundInSystemDirectory) {
  if (!isFoundInSystemDirectory) includedByPath[includer].push_back(&header);
}

void SystemHeaders::settle(const clang::FileEntry* source) {
  Files open{nullptr, source};
  projectFiles.insert(source);
  while (!open.empty()) {
    const auto headers = includedByPath.find(open.back());
    open.pop_back();
    if (headers == includedByPath.end()) continue;
    for (const clang::FileEntry* header : headers->second) {
      if (projectFiles.insert(header).second) open.push_back(header);
    }
  }
}

}  // namespace fe_db_tools
