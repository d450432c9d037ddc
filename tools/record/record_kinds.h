#pragma once

#include "../common/record_kinds.h"
