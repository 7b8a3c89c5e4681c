// All services that this stand-in has: one list for each file that implements some, and the lists together.
#pragma once

#include "simulator/host/runtime/services.h"

namespace sim::host {

std::span<const ServiceRow> RegistrationServices();
std::span<const ServiceRow> ObjectServices();
std::span<const ServiceRow> PropertyServices();
std::span<const ServiceRow> StringServices();
std::span<const ServiceRow> ArrayServices();
std::span<const ServiceRow> VariantServices();
std::span<const ServiceRow> BuiltInServices();
std::span<const ServiceRow> FolderItemServices();

std::span<const ServiceRow> AllServices();

} // namespace sim::host
