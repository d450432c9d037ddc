#pragma once

#include <string>
#include <string_view>

#include "fe_db/kinds.h"
#include "persistence/generic_element.h"

namespace orvalesca::databases_merger {

class FrontendDatabase;

/// One source path that the front end has seen. Unique in a dataset by its bytes.
class File : public persistence::GenericElement {
 public:
  File() = default;
  explicit File(std::string_view path, FileKind kind = {}, results_api::LanguageKind language = {},
                bool huge = false)
      : path(path), kind(kind), language(language), huge(huge) {}

  /// Byte for byte as the front end gave it. The key: not changed inside a dataset.
  const std::string& getPath() const { return path; }
  void setPath(const std::string& newPath) { path = newPath; }
  FileKind getKind() const { return kind; }
  void setKind(FileKind newKind) { kind = newKind; }
  results_api::LanguageKind getLanguage() const { return language; }
  void setLanguage(results_api::LanguageKind newLanguage) { language = newLanguage; }
  bool getHuge() const { return huge; }
  void setHuge(bool isHuge) { huge = isHuge; }
  /// For the front end's own use: copied with the element, never read here and never stored.
  bool getSpareFlag() const { return spareFlag; }
  void setSpareFlag(bool on) { spareFlag = on; }

  /// The column Huge: 0 or 1; any other number reads as true.
  std::uint32_t getHugeForDB() const { return huge ? 1 : 0; }
  void setHugeFromDB(std::uint32_t stored) { huge = stored != 0; }

 private:
  friend class CompilationData;
  friend struct ElementSave;

  long long saveToDB(FrontendDatabase& db);
  void loadFromDB(FrontendDatabase& db);

  static bool isLoaded;     ///< the whole table has been read; process-wide
  static bool isPreLoaded;  ///< every stored row is in memory with its id; process-wide

  std::string path;
  FileKind kind{};
  results_api::LanguageKind language{};
  bool huge = false;
  bool spareFlag = false;
};

}  // namespace orvalesca::databases_merger
