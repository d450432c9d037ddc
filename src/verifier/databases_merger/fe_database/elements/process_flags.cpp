#include "fe_db/elements.h"

/// The process-wide flags of every element class, in one source file: defined inline in a header
/// they would exist once more in every program that uses the library.
namespace orvalesca::databases_merger {

bool File::isLoaded = false;
bool File::isPreLoaded = false;
bool Identifier::isLoaded = false;
bool Identifier::isPreLoaded = false;
bool Macro::isLoaded = false;
bool Macro::isPreLoaded = false;
bool MacroInvocation::isLoaded = false;
bool MacroInvocation::isPreLoaded = false;
bool MacroInvocationCodeOrigin::isLoaded = false;
bool MacroInvocationCodeOrigin::isPreLoaded = false;
bool MacroExpansion::isLoaded = false;
bool MacroExpansion::isPreLoaded = false;
bool Type::isLoaded = false;
bool Type::isPreLoaded = false;
bool TypeReference::isLoaded = false;
bool TypeReference::isPreLoaded = false;
bool Variable::isLoaded = false;
bool Variable::isPreLoaded = false;
bool Function::isLoaded = false;
bool Function::isPreLoaded = false;
bool ExternalIdentifier::isLoaded = false;
bool ExternalIdentifier::isPreLoaded = false;
bool Field::isLoaded = false;
bool Field::isPreLoaded = false;
bool EnumConstant::isLoaded = false;
bool EnumConstant::isPreLoaded = false;
bool Label::isLoaded = false;
bool Label::isPreLoaded = false;
bool CallPoint::isLoaded = false;
bool CallPoint::isPreLoaded = false;
bool Unit::isLoaded = false;
bool Unit::isPreLoaded = false;
bool UnitFile::isLoaded = false;
bool UnitFile::isPreLoaded = false;
bool Include::isLoaded = false;
bool Include::isPreLoaded = false;
bool Reference::isLoaded = false;
bool Reference::isPreLoaded = false;
bool Property::isLoaded = false;
bool Property::isPreLoaded = false;

}  // namespace orvalesca::databases_merger
