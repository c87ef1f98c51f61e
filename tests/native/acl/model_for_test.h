// The catalogue entry of a model text that a test names; a typo in a test fails the test
// instead of dereferencing null.
#pragma once
#include <gtest/gtest.h>

#include "snmp/model_catalogue.h"

inline const ModelEntry& M(const char* text) {
  const ModelEntry* m = LookupModel(text);
  EXPECT_NE(m, nullptr) << text;
  static const ModelEntry none{};
  return m ? *m : none;
}
