// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/form_json.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

namespace brelant {
namespace {

using script::Property;

class FormJsonTest : public ::testing::Test {
 protected:
  Screen screen_;
  Form form_{screen_, "frmA", "First"};
  Control& field_{form_.AddIndexed(ControlKind::text, "txb", 1, "450")};
};

TEST_F(FormJsonTest, AControlHasItsNameAndItsState) {
  field_.SetBack(9268308);
  field_.SetFore(65535);
  field_.SetTip("a tip");
  EXPECT_EQ(ControlJson(field_).dump(),
            "{\"control\":\"txb(1)\",\"text\":\"450\",\"value\":0,\"visible\":true,\"enabled\":true,"
            "\"back\":9268308,\"fore\":65535,\"tip\":\"a tip\"}");
}

TEST_F(FormJsonTest, AFormHasItsControlsInTheirOrder) {
  form_.Add(ControlKind::check, "cbx").SetValue(1);
  form_.Add(ControlKind::button, "btn", "Go").SetEnabled(false);
  form_.Show();
  EXPECT_EQ(
      FormJson(form_).dump(),
      "{\"form\":\"frmA\",\"caption\":\"First\",\"visible\":true,\"controls\":{"
      "\"txb(1)\":{\"text\":\"450\",\"value\":0,\"visible\":true,\"enabled\":true,\"back\":-1,\"fore\":-1,"
      "\"tip\":\"\"},"
      "\"cbx\":{\"text\":\"\",\"value\":1,\"visible\":true,\"enabled\":true,\"back\":-1,\"fore\":-1,"
      "\"tip\":\"\"},"
      "\"btn\":{\"text\":\"Go\",\"value\":0,\"visible\":true,\"enabled\":false,\"back\":-1,\"fore\":-1,"
      "\"tip\":\"\"}}}");
}

TEST_F(FormJsonTest, AFormWithoutControlsHasAnEmptyObject) {
  const Form empty(screen_, "frmB", "");
  EXPECT_EQ(FormJson(empty).dump(), "{\"form\":\"frmB\",\"caption\":\"\",\"visible\":false,\"controls\":{}}");
}

TEST_F(FormJsonTest, APropertyIsAValueOfItsKind) {
  field_.SetValue(3);
  field_.SetVisible(false);
  field_.SetItems({"a", "b"});
  field_.SetBack(255);
  field_.SetFore(65280);
  field_.SetTip("t");
  EXPECT_EQ(PropertyJson(field_, Property::text), "450");
  EXPECT_EQ(PropertyJson(field_, Property::value), 3);
  EXPECT_EQ(PropertyJson(field_, Property::visible), false);
  EXPECT_EQ(PropertyJson(field_, Property::enabled), true);
  EXPECT_EQ(PropertyJson(field_, Property::back), 255);
  EXPECT_EQ(PropertyJson(field_, Property::fore), 65280);
  EXPECT_EQ(PropertyJson(field_, Property::tip), "t");
  EXPECT_EQ(PropertyJson(field_, Property::items).dump(), "[\"a\",\"b\"]");
}

}  // namespace
}  // namespace brelant
