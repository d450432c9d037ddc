#include "fe_db/macro_invocation.h"

#include <algorithm>

#include "fe_db/macro_invocation_code_origin.h"

namespace orvalesca::databases_merger {

void MacroInvocation::insertCodeOrigin(MacroInvocationCodeOrigin* origin) {
  const auto place = std::lower_bound(codeOrigins.begin(), codeOrigins.end(), origin->getOffset(),
                                      [](const MacroInvocationCodeOrigin* e, std::uint32_t offset) {
                                        return e->getOffset() < offset;
                                      });
  codeOrigins.insert(place, origin);
}

}  // namespace orvalesca::databases_merger
