// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/safety/unit_dialogs.h"

#include <QPainter>
#include <array>

#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/windows/dialog_parts.h"
#include "panels/PanelFrame.h"

namespace brelant {

namespace {

/// A value as the panel shows it: what this program is about.
class Emblem : public QWidget {
 public:
  explicit Emblem(QWidget* parent) : QWidget(parent) {
    ScaleFont(*this, 1.8, QFont::Bold);
    const int side = fontMetrics().horizontalAdvance(kText) * 3 / 2;
    setFixedSize(side, side);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ToQColor(colours::kFieldBack).darker(250));
    painter.drawRoundedRect(rect(), 10, 10);
    painter.setPen(ToQColor(colours::kLive));
    painter.drawText(rect(), Qt::AlignCenter, kText);
  }

 private:
  static constexpr const char* kText = "CO2";
};

}  // namespace

SensorConfigWindow::SensorConfigWindow(Form& form, Acts& acts) : UnitDialogWindow(form, acts) {
  AddSequence();
  AddFormat();
  AddId();
  AddLeave("btnCancel", 'a');
}

void SensorConfigWindow::AddSequence() {
  auto& frame = AddFrame("Display sequence");
  StartAt(AddChoice("Value &1:", "cmbValue1", frame));
  AddChoice("Value &2:", "cmbValue2", frame);
  AddChoice("Value &3:", "cmbValue3", frame);
  AddChoice("Value &4:", "cmbValue4", frame);
  AddSender("btnUpdateDisplaySequence", 'd', frame);
}

void SensorConfigWindow::AddFormat() {
  auto& frame = AddFrame("Temperature format");
  auto& row = AddRow(frame, 12);
  AddCaption("Show temperatures in:", *this, row);
  AddOption(views_, views_("optTemp", 0), 'C', *this, row);
  AddOption(views_, views_("optTemp", 1), 'F', *this, row);
  row.addStretch();
  AddSender("btnUpdateTempFormat", 't', frame);
}

void SensorConfigWindow::AddId() {
  auto& frame = AddFrame("Network");
  AddFact("Current network ID:", "txtCurrentID", {}, frame);
  AddNumber("Ne&w network ID:", "txtNewID", {}, frame);
  AddSender("btnUpdateNetworkD", 'n', frame);
}

AbcWindow::AbcWindow(Form& form, Acts& acts) : UnitDialogWindow(form, acts) {
  auto& frame = AddFrame("ABC interval");
  AddFact("Current interval:", "txtCurrent", "days", frame);
  StartAt(AddNumber("&New interval:", "txtDays", "days", frame));
  AddSender("btnChangeInterval", 'U', frame);
  AddLeave("btnCancel", 'C');
}

LoggerWindow::LoggerWindow(Form& form, Acts& acts) : UnitDialogWindow(form, acts) {
  auto& values = AddFrame("Logged values");
  StartAt(AddChoice("Logger &1:", "cmbLoggerValue1", values));
  AddChoice("Logger &2:", "cmbLoggerValue2", values);
  AddSender("btnChangeValues", 'v', values);
  auto& interval = AddFrame("Interval");
  AddNumber("One &sample every:", "txtMinutes", "minutes", interval);
  AddSender("btnChangeInterval", 'i', interval);
  AddPush("btnEstimate", 'E', interval);
  AddLeave("btnCancel", 'C');
}

OptionsWindow::OptionsWindow(Form& form, Acts& acts) : UnitDialogWindow(form, acts) {
  auto& frame = AddFrame("Continious update");
  StartAt(AddNumber("&Every", "txtSeconds", "second(s)", frame));
  AddSender("btnChangeUpdate", 'u', frame);
  AddLeave("btnCancel", 'C');
}

AboutWindow::AboutWindow(Form& form, Acts& acts) : UnitDialogWindow(form, acts) {
  auto& row = AddRow(Ground(), 20);
  auto& picture = Make<Emblem>(*this);
  picture.setObjectName("Picture1");
  row.addWidget(&picture, 0, Qt::AlignTop);
  auto& texts = *std::make_unique<QVBoxLayout>().release();
  row.addLayout(&texts, 1);
  auto& title = AddCaption(QString::fromStdString(kApplication), *this, texts);
  ScaleFont(title, 1.8, QFont::DemiBold);
  auto& version = AddRow(texts, 6);
  AddCaption("Version", *this, version);
  AddLabel(views_, views_("lblVersion"), 0, *this, version);
  version.addStretch();
  auto& about = AddLabel(views_, views_("lblAbout"), 0, *this, texts);
  about.setWordWrap(true);
  about.setFixedWidth(Digits(about, 44));
  StartAt(AddLeave("btnOK", 'O'));
}

}  // namespace brelant
