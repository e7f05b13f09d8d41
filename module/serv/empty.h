// The one routine behind all empty entries. Error reports of the extended-precision routines go to
// it: routine name, negative position, value, null.
#pragma once

extern "C" __attribute__((visibility("hidden"))) void jex_serv_empty(...);
