// The texts of the statuses.
#include <jex/dfti.h>

const char* jex_dft_dfti_error_message_external(jex_int status) {
  static constexpr const char* texts[] = {
      "no error",
      "there is no memory for the transform",
      "no such parameter, or a value that it cannot have",
      "the settings do not fit together, or the transform is not committed",
      "threads failed",
      "no valid handle",
      "this case is not offered",
      "the kernel module is missing, or has no driver for this case",
      "more threads compute at the same time than were announced",
      "a length is beyond the transform engine"};
  constexpr jex_int count = sizeof texts / sizeof *texts;
  return status >= 0 && status < count ? texts[status] : "an unknown status";
}
