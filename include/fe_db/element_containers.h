#pragma once

#include <boost/container/set.hpp>
#include <boost/unordered_set.hpp>
#include <deque>

#include "fe_db/element_keys.h"

/// The containers of a dataset, one name each. They own the elements by value; an element never
/// moves and lives as long as its dataset, so pointers to it stay good. The order of the hash
/// containers is unspecified and differs from run to run.
namespace orvalesca::databases_merger {

template <class T>
using LocIdentifierSet = boost::unordered_set<T, hashLocIdentifier<T>, equalLocIdentifier<T>>;
template <class T>
using FieldsSet = boost::unordered_set<T, hashFields, equalFields>;
template <class T>
using PreprocessedLineSet =
    boost::unordered_multiset<T, hashPreprocessedLine<T>, equalPreprocessedLine<T>>;

/// One per path, one per name.
using FileSet = boost::unordered_set<File, hashName<File>, equalName<File>>;
using IdentifierSet = boost::unordered_set<Identifier, hashName<Identifier>, equalName<Identifier>>;
/// All macros of a name are adjacent; their order within the container is not that of the dataset.
using MacroSet = boost::unordered_multiset<Macro, hashMacroIdentifier, equalMacroIdentifier>;
/// Grouped by line of the preprocessed text; no order within a line.
using MacroInvocationSet = PreprocessedLineSet<MacroInvocation>;
using MacroExpansionSet = PreprocessedLineSet<MacroExpansion>;
/// In the order of their emplacing, never searched.
using MacroInvocationCodeOriginSequence = std::deque<MacroInvocationCodeOrigin>;
using MacroExpansionSequence = std::deque<MacroExpansion>;
/// One per name and position.
using TypeSet = LocIdentifierSet<Type>;
using FunctionSet = LocIdentifierSet<Function>;
using FieldSet = LocIdentifierSet<Field>;
using EnumConstantSet = LocIdentifierSet<EnumConstant>;
using LabelSet = LocIdentifierSet<Label>;
/// The same, sorted by path, line, column.
using VariableSet = boost::container::set<Variable, lessLocIdentifier<Variable>>;
/// One per declared type.
using TypeReferenceSet = boost::unordered_set<TypeReference, hashDeclaredType, equalDeclaredType>;
/// One per name and entity.
using ExternalIdentifierSet = boost::unordered_set<ExternalIdentifier, hashEntity, equalEntity>;
/// One per caller and position.
using CallPointSet = boost::unordered_set<CallPoint, hashLocCaller, equalLocCaller>;
/// One per main file, directory and object (command).
using UnitSet = FieldsSet<Unit>;
/// One per unit and file.
using UnitFileSet = FieldsSet<UnitFile>;
/// One per including file, line and included file.
using IncludeSet = FieldsSet<Include>;
/// One per entity and position.
using ReferenceSet = FieldsSet<Reference>;
/// One per entity.
using PropertySet = FieldsSet<Property>;

}  // namespace orvalesca::databases_merger
