#pragma once

#include "llvm/ADT/ArrayRef.h"

namespace clang {
class ClassTemplateSpecializationDecl;
class ConceptSpecializationExpr;
class FunctionDecl;
class TemplateSpecializationType;
}  // namespace clang

namespace fe_db_tools {

class References;

/// Of some parts of a template Clang keeps no instantiated syntax, but only the result. What a
/// parameter's members are called in there (`typename T::value_type`) is looked up in the
/// arguments, as far as that is simple: not what depends on the type of an expression.

/// What an alias template stands for.
void referFromAlias(References& references, const clang::TemplateSpecializationType& alias);
/// The definition of a concept.
void referFromConcept(References& references, const clang::ConceptSpecializationExpr& check);
/// The template's parameters, and the arguments of the partial specialization that was selected.
void referFromHead(References& references,
                   const clang::ClassTemplateSpecializationDecl& instantiated);
/// The template's parameters, and what it requires.
void referFromHead(References& references, const clang::FunctionDecl& instantiated);

}  // namespace fe_db_tools
