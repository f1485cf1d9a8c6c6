#pragma once

#include "core/component_object.h"
#include "services/fi_profile_service.h"

// What FIProfile_Create returns: the FIProfile property, method and event
// tables over one FIProfileService.
namespace orvelan {

const ComponentTables<FIProfileService>& FIProfileTables();

class FIProfileComponent : public ComponentObject<FIProfileService> {
 public:
  FIProfileComponent(EventCallback callback, void* user_data)
      : ComponentObject(FIProfileTables(), callback, user_data) {}
};

}  // namespace orvelan
