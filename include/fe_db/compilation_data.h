#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include "fe_db/element_containers.h"
#include "fe_db/export.h"
#include "persistence/operation_kind.h"

namespace orvalesca::databases_merger {

class InsertionOrder;
class CompilationDatabase;
class FrontendDatabase;
class MacroGroups;
class PreprocessingDatabase;
class LastSave;
class mergerImpl;

/// Everything that is known of one compilation, in memory, and the two databases that it comes from
/// and goes to. Start here.
///
/// Use:      a front end calls an emplace operation for each occurrence, in any order that has a
///           referred element ready, then saveToPpDB(), resetIds(getPpDb()), saveToCompDB().
///           Later phases read with the get operations.
/// Ownership: the dataset owns its elements; a pointer or reference that an operation hands out
///           stays good as long as the dataset. Pointers given to it (File, Identifier, Type,
///           Function, ...) have to be elements of the same dataset. Elements may be changed
///           through their setters, but not in the fields of their key (element_keys.h).
/// Repeats:  `accumulate` false leaves a known element as it is. True merges the new occurrence
///           into it (counts add up, see each element's update()) and sets its id back to 0, so
///           that the next save finds its row again and brings the merged counts there.
/// Errors:   failures of SQLite are reported on standard error; loads and saves answer whether
///           their transaction was committed. An operation that needs a database which the
///           dataset does not have reports that and answers false. Out of memory: std::bad_alloc.
/// Threads:  one at a time per dataset. Loading and saving is one unit per process: the isLoaded
///           and isPreLoaded flags of the element classes are process-wide.
/// Cost:     one hash look-up per occurrence, over addresses, or over the bytes of a name or path
///           where one is given; variables cost a walk down a tree. A repeat allocates
///           nothing.
class FE_DB_EXPORT CompilationData {
 public:
  // --- Life.

  /// An empty path means no database of that kind. Opens nothing: connect through getCompDb() and
  /// getPpDb().
  CompilationData(std::string_view compilationPath, std::string_view preprocessingPath);
  ~CompilationData();
  CompilationData(const CompilationData&) = delete;
  CompilationData& operator=(const CompilationData&) = delete;

  /// Makes the dataset of the process unless there is one, which then stays as it is.
  static void newCompilationInstanceIfNotAlreadyDone(std::string_view compilationPath,
                                                     std::string_view preprocessingPath);
  /// A dataset of the caller's own.
  static std::unique_ptr<CompilationData> newInstance(std::string_view compilationPath,
                                                      std::string_view preprocessingPath);
  /// The dataset of the process, or null. In spite of its name it is no database.
  static CompilationData* compilationDatabase();
  static void deleteInstance();

  /// The databases; REQUIRES: the dataset was constructed with the path. fe_db/
  /// compilation_database.h makes the classes complete.
  CompilationDatabase& getCompDb();
  PreprocessingDatabase& getPpDb();

  /// Makes loadFromDB and saveToCompDB cover the tables from Type to CallPoint and the
  /// cross-reference. Cannot be undone.
  void setDataNeededForDbLink();
  /// Makes saveToCompDB write File, Identifier and Macro. Cannot be undone.
  void setPropagateMacroInfo();

  // --- Files and names.

  /// On a repeat both kinds are overwritten.
  File& emplaceFile(std::string_view path, FileKind kind, results_api::LanguageKind language);
  Identifier* emplaceIdentifier(std::string_view name, IdentifierKind kind, bool accumulate,
                                unsigned count);
  /// The element of exactly these bytes, or null.
  File* getFile(std::string_view path) const;
  Identifier* getIdentifier(std::string_view name) const;
  /// Marks the file of the path, which is made with kinds 0 when there is none.
  void setHugeFile(std::string_view path);
  bool isHugeFile(std::string_view path) const;

  // --- Emplacing by a known name. The identifier is not counted and must not be null.

  Type* emplaceType(Identifier* identifier, bool unnamed, const Localization& localization,
                    TypeKind kind, bool accumulate, unsigned refCount, unsigned refTagCount,
                    bool local, bool incomplete);
  Variable* emplaceVariable(Identifier* identifier, const Localization& localization, Type* type,
                            bool isDefined, LinkageKind linkage, bool accumulate,
                            unsigned refCount);
  Function* emplaceFunction(Identifier* identifier, Identifier* sourceName,
                            const Localization& localization, bool isDefined, bool isSpecial,
                            EffectKind effect, LinkageKind linkage, bool accumulate);
  Macro& emplaceMacro(Identifier* identifier, const Localization& localization, Macro::Value value,
                      bool isDefined, bool accumulate, unsigned refCount, const std::string& text,
                      bool isObjectLike, bool isVariadic, bool isCommandLineDefinition,
                      bool isPredefined);
  /// The identifier gets the External bit, here and by name, on every occurrence.
  ExternalIdentifier* emplaceExternalIdentifier(Identifier* identifier,
                                                const EntityDescription& description,
                                                bool accumulate);

  // --- Emplacing by name: the name is interned and counted first. For types, functions, enum
  // constants and labels an empty name is rejected: returns null and creates nothing.

  Type* emplaceType(std::string_view name, bool unnamed, const Localization& localization,
                    TypeKind kind, bool accumulate, unsigned refCount, unsigned refTagCount);
  Variable* emplaceVariable(std::string_view name, const Localization& localization, Type* type,
                            bool isDefined, LinkageKind linkage, bool accumulate);
  Function* emplaceFunction(std::string_view name, std::string_view sourceName,
                            const Localization& localization, bool isDefined, bool isSpecial,
                            EffectKind effect, LinkageKind linkage, bool accumulate);
  Macro& emplaceMacro(std::string_view name, const Localization& localization, bool accumulate,
                      unsigned refCount);
  ExternalIdentifier* emplaceExternalIdentifier(std::string_view name,
                                                const EntityDescription& description,
                                                bool accumulate);
  Field& emplaceField(std::string_view name, const Localization& localization, bool accumulate,
                      unsigned refCount);
  EnumConstant* emplaceEnumConstant(std::string_view name, const Localization& localization,
                                    bool accumulate);
  Label* emplaceLabel(std::string_view name, const Localization& localization, bool accumulate);

  // --- Emplacing what has no name. The last three make a new element each time.

  TypeReference* emplaceTypeReference(Type* declared, Type* referenced, bool accumulate);
  CallPoint* emplaceCallPoint(Function* caller, Function* callee, const Localization& localization,
                              bool isValueUsed, bool accumulate);
  MacroInvocation* emplaceMacroInvocation(Macro* macro, const Localization& localization,
                                          const OneLineRange& range);
  MacroInvocationCodeOrigin* emplaceMacroInvocationCodeOrigin(const Localization& localization,
                                                              MacroInvocation* invocation,
                                                              unsigned offset, unsigned endOffset,
                                                              bool isParameter,
                                                              std::string_view tokenString);
  MacroExpansion* emplaceMacroExpansion(const Localization& localization,
                                        std::string_view expandedCode, std::string_view macroCall,
                                        unsigned ppLine, unsigned ppColumn);

  // --- The cross-reference, five tables that a compilation database may lack: then nothing of it
  // is loaded or saved, silently. saveToCompDB writes it after setDataNeededForDbLink; an element
  // whose entity, unit or file gets no row gets none either.
  //
  // A repeat is known by these arguments: unit, all four, but the command only where there is no
  // object; include, all but the kind; reference, entity and position; property, the entity. It
  // adds its roles or flags to what is known, and changes nothing else. REQUIRES: no null in
  // these but the file of a position, whose reference is then not saved, and the owner.

  /// The other members are the caller's to set. `output` is empty if there is no object.
  Unit& emplaceUnit(File* mainFile, std::string_view directory, std::string_view output,
                    std::string_view command);
  UnitFile& emplaceUnitFile(Unit* unit, File* file);
  Include& emplaceInclude(File* including, std::uint32_t line, File* included, IncludeKind kind);
  /// An entity is a pointer to a type, function, variable, macro, enum constant, field or label.
  Reference& emplaceReference(const EntityReference& entity, const Localization& localization,
                              ReferenceRoles roles);
  Property& emplaceProperty(const EntityReference& entity, PropertyFlags flags, Type* owner,
                            std::string_view scope);

  // --- Emplacing a stored row: as an occurrence of what the row says. The row's id is not used.
  // Null for a variable without a file, and for an enum constant or label whose name is empty.

  File* emplaceFromDB(const File& row, bool accumulate);
  Identifier* emplaceFromDB(const Identifier& row, bool accumulate);
  Macro* emplaceFromDB(const Macro& row, bool accumulate);
  MacroInvocation* emplaceFromDB(const MacroInvocation& row, bool accumulate);
  MacroInvocationCodeOrigin* emplaceFromDB(const MacroInvocationCodeOrigin& row, bool accumulate);
  MacroExpansion* emplaceFromDB(const MacroExpansion& row, bool accumulate);
  Type* emplaceFromDB(const Type& row, bool accumulate);
  TypeReference* emplaceFromDB(const TypeReference& row, bool accumulate);
  Variable* emplaceFromDB(const Variable& row, bool accumulate);
  Function* emplaceFromDB(const Function& row, bool accumulate);
  ExternalIdentifier* emplaceFromDB(const ExternalIdentifier& row, bool accumulate);
  Field* emplaceFromDB(const Field& row, bool accumulate);
  EnumConstant* emplaceFromDB(const EnumConstant& row, bool accumulate);
  Label* emplaceFromDB(const Label& row, bool accumulate);
  CallPoint* emplaceFromDB(const CallPoint& row, bool accumulate);
  Unit* emplaceFromDB(const Unit& row, bool accumulate);
  UnitFile* emplaceFromDB(const UnitFile& row, bool accumulate);
  Include* emplaceFromDB(const Include& row, bool accumulate);
  Reference* emplaceFromDB(const Reference& row, bool accumulate);
  Property* emplaceFromDB(const Property& row, bool accumulate);

  // --- Looking up, in memory only. Null when nothing matches; nothing is made.

  Type* getType(const Localization& localization, Identifier* identifier) const;
  Field* getField(const Localization& localization, Identifier* identifier) const;
  EnumConstant* getEnumConstant(const Localization& localization, Identifier* identifier) const;
  Label* getLabel(const Localization& localization, Identifier* identifier) const;
  CallPoint* getCallPoint(const Localization& localization, Function* caller) const;
  /// REQUIRES: the position has a file.
  Variable* getVariable(const Localization& localization, Identifier* identifier) const;
  Function* getFunction(std::string_view name, const Localization& localization) const;
  TypeReference* getTypeReference(Type* declared) const;
  Property* getProperty(const EntityReference& entity) const;

  /// The macro of the name that was inserted first.
  Macro* getMacro(Identifier* identifier) const;
  /// The first macro of the name, in the order of its group (first inserted, then from the newest
  /// to the oldest), that is at the position or is matched by a wildcard on either side. Costs
  /// the same however many macros the name has.
  Macro* getMacro(Identifier* identifier, const Localization& localization);
  /// The first macro of the name that has a value, or the last of its group when none has.
  Macro* getaMacroWithValue(std::string_view name) const;
  /// Cursor over the macros that are in a file: set `first` to true, call until null. REQUIRES:
  /// no macro is emplaced during the walk.
  const Macro* listTranslationUnitMacro(bool& first);
  void eachMacro(std::function<void(const Macro&)> callback) const;
  /// Expansions that were emplaced, in that order; not those that were loaded.
  void eachMacroExpansion(std::function<void(const MacroExpansion&)> callback) const;

  /// What is on a line of the preprocessed text: a range of elements in no particular order.
  /// Expansions are those that were loaded, not those that were emplaced.
  std::pair<MacroInvocationSet::const_iterator, MacroInvocationSet::const_iterator>
  getMacroInvocationForLine(unsigned ppLine) const;
  std::pair<MacroExpansionSet::const_iterator, MacroExpansionSet::const_iterator>
  getMacroExpansionForLine(unsigned ppLine) const;
  bool isMacroExpansionLoaded() const;

  const TypeSet& getTypes() const;
  const VariableSet& getVariables() const;
  const FunctionSet& getFunctions() const;
  const FieldSet& getFields() const;
  const EnumConstantSet& getEnumConstants() const;
  const LabelSet& getLabels() const;
  const UnitSet& getUnits() const;
  const UnitFileSet& getUnitFiles() const;
  const IncludeSet& getIncludes() const;
  const ReferenceSet& getReferences() const;
  const PropertySet& getProperties() const;

  // --- Searching the compilation database, one element at a time, without loading its tables.
  // REQUIRES a connected database.
  //
  // Cursor:   the caller owns a bool, sets it to true, and calls until null comes back. The first
  //           call takes the arguments and sets it to false; later calls go on and take none. After
  //           the end, false walks through the same answer again, true begins a new search.
  //           There is one cursor per operation (one per kind for findObjectFromMinLength, one per
  //           linkage External or not for findVariableFromRefCountAndLinkage); different ones may
  //           run side by side. Walk to the end: a search that is begun while the last one is open
  //           is refused by SQLite, which is reported, and the old rows go on.
  // Answers:  elements of this dataset; a row is read once and stays, so the same row is the same
  //           pointer. A row that cannot become an element is passed over. Null as well when a step
  //           failed: ask getCompDb().hasFailed().
  // Order:    none, but that of lines for findCallPoint and of kinds for external identifiers.
  // By name:  an identifier stands for its row: by its id, or if it has none by its name; it need
  //           not be an element of the dataset and is not changed. Null, and a name without a row,
  //           find nothing.
  // Cost:     one step per call, and one row read for an element that is not in memory yet.

  CallPoint* findCallPoint(bool& first);
  Identifier* findIdentifier(bool& first);
  Macro* findMacro(bool& first);

  EnumConstant* findEnumConstantFromIdentifier(Identifier* identifier, bool& first);
  ExternalIdentifier* findExternalIdentifierFromIdentifier(const Identifier* identifier,
                                                           bool& first);
  Field* findFieldFromIdentifier(Identifier* identifier, bool& first);
  Function* findFunctionFromIdentifier(Identifier* identifier, bool& first);
  Function* findFunctionFromIdentifierAndLinkage(Identifier* identifier, LinkageKind linkage,
                                                 bool& first);
  Label* findLabelFromIdentifier(Identifier* identifier, bool& first);
  Macro* findMacroFromIdentifier(const Identifier* identifier, bool& first);
  Type* findTypeFromIdentifier(Identifier* identifier, bool& first);
  /// `kind` is a mask of which any bit suffices; unnamed types are left out.
  Type* findTypeFromIdentifierAndKind(Identifier* identifier, TypeKind kind, bool& first);
  Variable* findVariableFromIdentifier(Identifier* identifier, bool& first);
  Variable* findVariableFromIdentifierAndLinkage(Identifier* identifier, LinkageKind linkage,
                                                 bool& first);
  /// No cursor: the first function of the name that is defined and has external linkage, or null.
  Function* findExternalDefinedFunction(Identifier* identifier);

  /// Calls whose value is dropped and whose callee has, by name, a definition without effect; once
  /// for each such definition.
  CallPoint* findCallPointWithNoEffect(bool& first);
  Field* findFieldFromRefCount(int refCount, bool& first);
  /// `kind` is a mask of which any bit suffices.
  Identifier* findIdentifierFromKind(IdentifierKind kind, bool& first);
  /// Names counted at least `count` times, whatever the operation says.
  Identifier* findIdentifierFromKindAndCount(IdentifierKind kind, int count,
                                             persistence::OperationKind operation, bool& first);
  Macro* findMacroFromRefCount(int refCount, bool& first);
  /// Named types; those of kind 0, which the compiler brings along, are left out.
  Type* findTypeFromRefCount(int refCount, bool& first);
  /// Named types with a tag.
  Type* findTypeFromRefTagCount(int refTagCount, bool& first);
  /// By the row id that the type holds; a type without one finds nothing.
  TypeReference* findTypeReferenceFromType(Type* declared, bool& first);
  /// External linkage: all external variables of the names whose counts add up to refCount. Any
  /// other: the variables with just this count and linkage.
  Variable* findVariableFromRefCountAndLinkage(int refCount, LinkageKind linkage, bool& first);
  /// Elements of one kind whose name has at least so many characters; of types only named ones.
  /// `linkage` is set to that of a function or variable found, else to None. A kind that is not one
  /// single bit, and External, find nothing and leave `first` as it is.
  NamedElement* findObjectFromMinLength(IdentifierKind kind, std::size_t minLength,
                                        LinkageKind& linkage, bool& first);

  // --- Loading: whole tables, in one transaction; a table is read at most once per process.
  // REQUIRES a connected database. The result says whether the transaction was committed.

  /// File only, from the compilation database if true, else from the preprocessing database.
  [[nodiscard]] bool preLoadFromDB(bool fromCompDb);
  [[nodiscard]] bool loadFromDB(bool fromCompDb);
  [[nodiscard]] bool loadMacroExpansionFromPbDB(PreprocessingDatabase& db);

  // --- Saving: each in one transaction. REQUIRES a connected database. True: all of it is in the
  // file, except rows that were refused for themselves, which are reported. False: nothing is, and
  // elements have the row ids that they had before.

  /// Does nothing unless setPropagateMacroInfo or setDataNeededForDbLink was called. Rows that the
  /// file already has are extended, not doubled. A further save writes elements that are new or
  /// have counted something since the last one. After a failure it may be tried again, unless
  /// stored counts had been read: then every further save is refused with a report.
  [[nodiscard]] bool saveToCompDB();
  /// After a failure it may be tried again.
  [[nodiscard]] bool saveToPpDB();
  /// Between the saves to two databases: all elements are without a row again.
  void resetIds(FrontendDatabase& db);

 private:
  friend class mergerImpl;
  class FE_DB_HIDDEN RestoredIds;
  class FE_DB_HIDDEN FlagsBefore;

  FE_DB_HIDDEN void clear();

  template <class T>
  FE_DB_HIDDEN void loadTable(FrontendDatabase& db,
                              const std::function<bool(T&)>& filter = nullptr);
  template <class T>
  FE_DB_HIDDEN void preLoadTable(FrontendDatabase& db);
  FE_DB_HIDDEN void loadCodeOrigins(FrontendDatabase& db);
  FE_DB_HIDDEN void loadMacroInfoFromDB(FrontendDatabase& db);
  FE_DB_HIDDEN FrontendDatabase* selectDb(bool fromCompDb, const char* operation) const;
  template <class T, class NextId>
  FE_DB_HIDDEN T* findNext(const char* operation, NextId&& nextId) const;
  template <class T>
  FE_DB_HIDDEN NamedElement* findFromMinLength(std::size_t minLength, LinkageKind& linkage,
                                               bool& first);

  FE_DB_HIDDEN void foldStoredRows();
  FE_DB_HIDDEN void foldUnknownRows();
  FE_DB_HIDDEN void saveFilesToDB(FrontendDatabase& db);
  FE_DB_HIDDEN void saveMacroExpansionsToPpDB();
  FE_DB_HIDDEN void saveMacroInvocationCodeOriginsToPpDB();
  template <class T>
  FE_DB_HIDDEN void saveTable(FrontendDatabase& db);
  template <class T>
  FE_DB_HIDDEN void saveTableAndRemember(FrontendDatabase& db, LastSave& saved);
  FE_DB_HIDDEN bool saveCompilationTables(FrontendDatabase& db, LastSave& saved);
  FE_DB_HIDDEN bool isRefusedAfterFailure(const FrontendDatabase& db) const;
  FE_DB_HIDDEN static void failTransactionAfterFailedRead(FrontendDatabase& db,
                                                          unsigned long failedReadsBefore);
  template <class T>
  FE_DB_HIDDEN auto& elementsOf();
  template <class T, class... Arguments>
  FE_DB_HIDDEN T& addElement(Arguments&&... arguments);
  template <class T>
  FE_DB_HIDDEN void reserveElements(std::size_t count);
  template <class T>
  FE_DB_HIDDEN T& insertElement(const T& element);
  FE_DB_HIDDEN Macro& insertMacro(const Macro& macro, Macro* ofName);
  template <class T, class Key>
  FE_DB_HIDDEN T* emplaceRow(const T& row, const Key& key, bool accumulate);
  template <class T>
  FE_DB_HIDDEN T* emplaceNamedRow(T row, IdentifierKind kind, bool accumulate);
  template <class T>
  FE_DB_HIDDEN T& emplaceNamed(Identifier* identifier, const Localization& localization,
                               bool accumulate, unsigned refCount);
  template <class T, class Key, class... Values>
  FE_DB_HIDDEN T& emplaceUnlessKnown(const Key& key, Values&&... values);
  template <class T, class Visit>
  FE_DB_HIDDEN void eachElement(Visit&& visit);

  static std::unique_ptr<CompilationData> compilationDataset;

  FileSet files;
  IdentifierSet identifiers;
  MacroSet macros;
  MacroSet::const_iterator macroCursor;
  MacroInvocationSet macroInvocations;
  MacroInvocationCodeOriginSequence macroInvocationCodeOrigins;
  MacroExpansionSequence macroExpansions;
  MacroExpansionSet macroExpansionsByLine;
  TypeSet types;
  TypeReferenceSet typeReferences;
  VariableSet variables;
  FunctionSet functions;
  ExternalIdentifierSet externalIdentifiers;
  FieldSet fields;
  EnumConstantSet enumConstants;
  LabelSet labels;
  CallPointSet callPoints;
  UnitSet units;
  UnitFileSet unitFiles;
  IncludeSet includes;
  ReferenceSet references;
  PropertySet properties;
  std::unique_ptr<CompilationDatabase> compDb;
  std::unique_ptr<PreprocessingDatabase> ppDb;
  MacroExpansionState macroExpansionState = MacroExpansionState::Pending;
  bool dataNeededForDbLink = false;
  bool propagateMacroInfo = false;
  std::unique_ptr<InsertionOrder> insertionOrder;  ///< order of saving and merging
  std::unique_ptr<MacroGroups> macroGroups;  ///< order and positions of the macros of one name
  bool hasSaveToCompDbFailed = false;        ///< and a further one would add stored counts twice
  std::unique_ptr<LastSave> lastSave;        ///< null until the first saveToCompDB is committed
};

}  // namespace orvalesca::databases_merger
