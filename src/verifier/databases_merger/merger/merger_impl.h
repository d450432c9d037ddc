#pragma once

#include <memory>
#include <string_view>

#include "fe_db/compilation_data.h"
#include "fe_db/compilation_database.h"

namespace orvalesca::databases_merger {

template <class T>
class LookupPredictor;
class Translation;

/// What a merger reads, folds and writes, each table after those that it refers to.
using MergedElements =
    decltype(concatenate(TypeList<File, Identifier, Function, CallPoint, EnumConstant, Type, Field,
                                  Label, Macro, TypeReference, Variable, ExternalIdentifier>{},
                         ExtensionElements{}));

/// The private side of CompilationDataMerger. Its four topics stand in a file each: the connection
/// and what may be rewritten (lifecycle.cpp), rows to elements (load_rows.cpp), elements of a
/// source to elements of the target (merge_tables.cpp), elements to rows (write_rows.cpp).
class mergerImpl {
 public:
  explicit mergerImpl(std::string_view path);

  CompilationDatabase& openDB();
  void closeDB();
  void beginTransaction();
  void commitTransaction();
  void setDebug() { debug = true; }
  void truncateDataFromDB();
  void loadDataFromDB();
  void mergeCompilationTables(mergerImpl& other);
  void saveToDB();
  const UnitSet& getUnits() const { return dataset->getUnits(); }
  std::vector<std::string> tablesNotInFile() const;

 private:
  bool mayRewrite(const char* operation);
  template <class T>
  void loadTable();
  template <class T>
  void foldTable(mergerImpl& other, Translation& inTarget);
  template <class T>
  void writeTable();
  void checkWhatWasWritten();
  template <class T>
  T* insertRow(T& row);
  template <class T, class Key>
  T* find(const Key& key, LookupPredictor<T>& predictor);
  template <class T>
  T& addFrom(const T& source, const Translation& inTarget);

  std::unique_ptr<CompilationData> dataset;
  CompilationDatabase* database;  ///< owned by the dataset
  bool debug = false;
  bool isConsumed = false;    ///< it was folded into a target
  bool isIncomplete = false;  ///< a load or a fold is under way, or has ended with an exception
  bool lockFailed = false;    ///< the latest begin failed: others may write the file
  bool refusalReported = false;
};

}  // namespace orvalesca::databases_merger
