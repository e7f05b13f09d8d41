// The core's entries that the module may import, as a regular expression for the whole name.
#pragma once

namespace jex::test {

inline const char* const core_entries =
    "jex_serv_(lock|unlock|cpu_detect|l2cache|jex_get_msg|jex_print)|"
    "jex_dft_dfti_(create_descriptor_d_1d|set_value_intval|commit_descriptor_external|"
    "free_descriptor_external|error_message_external)|"
    "jex_pdepl_[sd]_(ft|inv_ft|lu_2d|lu_3d|sl_ft|inv_sl_ft|sl_inv_ft|sph_lu_2d|sph_lu_globe)(_[a-z_"
    "]+)?";

}  // namespace jex::test
