// Parameters by number: which word each has, and the values that it may take.
#include "dfti/transform.h"

#include <cmath>
#include <initializer_list>

using namespace jex::dfti;

namespace {

struct Setting {
  jex_int parameter;
  int word;
  bool can_be_set;
  std::initializer_list<jex_int> codes;  // empty for a number
  jex_int least;
};

const Setting settings[] = {
    {JEX_DFTI_FORWARD_DOMAIN, JEX_DFT_FORWARD_DOMAIN, false, {}, 0},
    {JEX_DFTI_DIMENSION, JEX_DFT_RANK, false, {}, 0},
    {JEX_DFTI_PRECISION, JEX_DFT_PRECISION, false, {}, 0},
    {JEX_DFTI_NUMBER_OF_TRANSFORMS, JEX_DFT_NUMBER_OF_TRANSFORMS, true, {}, 1},
    {JEX_DFTI_COMPLEX_STORAGE,
     JEX_DFT_COMPLEX_STORAGE,
     true,
     {JEX_DFT_INTERLEAVED, JEX_DFT_SEPARATE},
     0},
    {JEX_DFTI_CONJUGATE_EVEN_STORAGE,
     JEX_DFT_CONJUGATE_EVEN_STORAGE,
     true,
     {JEX_DFT_INTERLEAVED, JEX_DFT_REAL_ELEMENTS},
     0},
    {JEX_DFTI_PLACEMENT, JEX_DFT_PLACEMENT, true, {JEX_DFT_IN_PLACE, JEX_DFT_NOT_IN_PLACE}, 0},
    {JEX_DFTI_INPUT_DISTANCE, JEX_DFT_INPUT_DISTANCE, true, {}, INT32_MIN},
    {JEX_DFTI_OUTPUT_DISTANCE, JEX_DFT_OUTPUT_DISTANCE, true, {}, INT32_MIN},
    {JEX_DFTI_ORDERING, JEX_DFT_ORDERING, true, {JEX_DFT_ORDERED, JEX_DFT_BACKWARD_SCRAMBLED}, 0},
    {JEX_DFTI_PACKED_FORMAT,
     JEX_DFT_PACKED_FORMAT,
     true,
     {JEX_DFT_CCS, JEX_DFT_PACK, JEX_DFT_PERM},
     0},
    {JEX_DFTI_COMMIT_STATUS, JEX_DFT_COMMIT_STATE, false, {}, 0},
    {JEX_DFTI_NUMBER_OF_USER_THREADS, JEX_DFT_USER_THREADS, true, {}, 1},
};

const Setting* find(jex_int parameter) {
  for (const Setting& setting : settings)
    if (setting.parameter == parameter) return &setting;
  return nullptr;
}

bool allows(const Setting& setting, jex_int value) {
  if (setting.codes.size() == 0) return value >= setting.least;
  for (const jex_int code : setting.codes)
    if (code == value) return true;
  return false;
}

void uncommit(Transform& t) { t.word(JEX_DFT_COMMIT_STATE) = JEX_DFT_UNCOMMITTED; }

bool is_scale(jex_int parameter) {
  return parameter == JEX_DFTI_FORWARD_SCALE || parameter == JEX_DFTI_BACKWARD_SCALE;
}
bool is_strides(jex_int parameter) {
  return parameter == JEX_DFTI_INPUT_STRIDES || parameter == JEX_DFTI_OUTPUT_STRIDES;
}

}  // namespace

jex_int jex_dft_dfti_set_value_intval(jex_dft_dfti_handle handle, jex_int parameter,
                                      jex_int value) {
  if (!is_valid(handle)) return JEX_DFTI_BAD_DESCRIPTOR;
  if (parameter == JEX_DFTI_THREAD_LIMIT) {
    if (value < 1) return JEX_DFTI_INVALID_CONFIGURATION;
    handle->thread_limit = value;
  } else {
    const Setting* setting = find(parameter);
    if (!setting || !setting->can_be_set || !allows(*setting, value))
      return JEX_DFTI_INVALID_CONFIGURATION;
    handle->word(setting->word) = value;
  }
  uncommit(*handle);
  return JEX_DFT_SUCCESS;
}

jex_int jex_dft_dfti_get_value_intval(jex_dft_dfti_handle handle, jex_int parameter,
                                      jex_int* value) {
  if (!is_valid(handle)) return JEX_DFTI_BAD_DESCRIPTOR;
  const Setting* setting = find(parameter);
  if (!value || (!setting && parameter != JEX_DFTI_THREAD_LIMIT))
    return JEX_DFTI_INVALID_CONFIGURATION;
  *value = setting ? handle->word(setting->word) : handle->thread_limit;
  return JEX_DFT_SUCCESS;
}

jex_int jex_dft_dfti_set_value_dblval(jex_dft_dfti_handle handle, jex_int parameter, double value) {
  if (!is_valid(handle)) return JEX_DFTI_BAD_DESCRIPTOR;
  if (!is_scale(parameter) || !std::isfinite(value)) return JEX_DFTI_INVALID_CONFIGURATION;
  const bool forward = parameter == JEX_DFTI_FORWARD_SCALE;
  const float single = float(value);
  for (jex_int i = 0; i < handle->dimensions; ++i) {
    // The scale belongs to the whole transform: the first dimension applies it.
    jex_int* const words = handle->records[i].word;
    const double d = i == 0 ? value : 1;
    const float s = i == 0 ? single : 1;
    memcpy(words + (forward ? JEX_DFT_FORWARD_SCALE_D : JEX_DFT_BACKWARD_SCALE_D), &d, sizeof d);
    memcpy(words + (forward ? JEX_DFT_FORWARD_SCALE_S : JEX_DFT_BACKWARD_SCALE_S), &s, sizeof s);
  }
  uncommit(*handle);
  return JEX_DFT_SUCCESS;
}

jex_int jex_dft_dfti_get_value_dblval(jex_dft_dfti_handle handle, jex_int parameter,
                                      double* value) {
  if (!is_valid(handle)) return JEX_DFTI_BAD_DESCRIPTOR;
  if (!is_scale(parameter) || !value) return JEX_DFTI_INVALID_CONFIGURATION;
  const bool forward = parameter == JEX_DFTI_FORWARD_SCALE;
  *value = handle->pointer<double>(forward ? JEX_DFT_FORWARD_SCALE_D : JEX_DFT_BACKWARD_SCALE_D);
  return JEX_DFT_SUCCESS;
}

jex_int jex_dft_dfti_set_value_intarray(jex_dft_dfti_handle handle, jex_int parameter,
                                        const jex_int* values) {
  if (!is_valid(handle)) return JEX_DFTI_BAD_DESCRIPTOR;
  if (!is_strides(parameter) || !values) return JEX_DFTI_INVALID_CONFIGURATION;
  const bool input = parameter == JEX_DFTI_INPUT_STRIDES;
  const jex_int d = handle->dimensions;
  for (jex_int i = 1; i <= d; ++i)
    if (values[i] == 0) return JEX_DFTI_INVALID_CONFIGURATION;
  handle->word(input ? JEX_DFT_INPUT_OFFSET : JEX_DFT_OUTPUT_OFFSET) = values[0];
  for (jex_int i = 0; i < d; ++i)
    handle->records[i].word[input ? JEX_DFT_INPUT_STRIDE : JEX_DFT_OUTPUT_STRIDE] = values[d - i];
  uncommit(*handle);
  return JEX_DFT_SUCCESS;
}

jex_int jex_dft_dfti_get_value_intarray(jex_dft_dfti_handle handle, jex_int parameter,
                                        jex_int* values) {
  if (!is_valid(handle)) return JEX_DFTI_BAD_DESCRIPTOR;
  if (!values || !(is_strides(parameter) || parameter == JEX_DFTI_LENGTHS))
    return JEX_DFTI_INVALID_CONFIGURATION;
  const jex_int d = handle->dimensions;
  if (parameter == JEX_DFTI_LENGTHS) {
    for (jex_int i = 0; i < d; ++i) values[d - 1 - i] = handle->records[i].word[JEX_DFT_LENGTH];
    return JEX_DFT_SUCCESS;
  }
  const bool input = parameter == JEX_DFTI_INPUT_STRIDES;
  values[0] = handle->word(input ? JEX_DFT_INPUT_OFFSET : JEX_DFT_OUTPUT_OFFSET);
  for (jex_int i = 0; i < d; ++i)
    values[d - i] = handle->records[i].word[input ? JEX_DFT_INPUT_STRIDE : JEX_DFT_OUTPUT_STRIDE];
  return JEX_DFT_SUCCESS;
}
