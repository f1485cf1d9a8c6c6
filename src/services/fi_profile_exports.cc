#include "core/exported_functions.h"
#include "services/fi_profile_component.h"

ORVELAN_DEFINE_COMPONENT_EXPORTS(FIProfile, orvelan::FIProfileComponent)
