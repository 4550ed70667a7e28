// JSON, as in state documents.
#pragma once

#include "state_document/json.h"

namespace simulator {

using state_document::Json;

}  // namespace simulator
