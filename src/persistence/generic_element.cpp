#include "persistence/generic_element.h"

namespace persistence {

// Here and not inline in the header: a program with hidden symbols would get a copy of its own.
bool GenericElement::optimisticInsert = false;

}  // namespace persistence
