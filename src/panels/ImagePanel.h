// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "panels/PanelFrame.h"

namespace brelant {

/// What the panels share whose fields are a view of the sensor's image: transfers of whole memories,
/// calibration by the program's own procedures, settings files of blocks (docs/architecture.md, Panels).
class ImagePanel : public PanelFrame {
 public:
  /// Names of the entries that calibrate temperature and CO2.
  struct CalibrationNames {
    std::string temperature = "CalTemp";
    std::string zero = "mCalCO2Zero";
    std::string background = "mCalCO2Background";
    std::string other = "mCalCO2Other";
  };
  /// What is not the same on all of them.
  struct Captions {
    std::string simulated;
    std::string calibratingTemperature;
    std::string temperatureEntry;
    std::string singlePointEntry;
    std::string optionsMenu = "mOptions";
    CalibrationNames names = {};
    /// Calibrations that not all panels have: name and caption of each entry.
    std::vector<std::pair<std::string, std::string>> furtherCalibrations = {};
  };

  ImagePanel(const PanelContext& context, const std::string& name, const Captions& captions);

  void LeaveSession() override { GiveImageBack(); }

  /// Shows the live values from the images.
  virtual bool FormUpdateM() = 0;
  /// The poll.
  virtual bool ActionSensorReadM() = 0;
  virtual bool ActionTWAReset() = 0;
  /// Ask for what the procedure needs and run it; an answer that is cancelled or empty ends them with true.
  bool ActionCalTempZero();
  /// `kind` of snsCal::ZeroKind.
  bool ActionCalCO2Zero(int kind);
  bool ActionCalCO2span();

  Control& mTWAreset;

 protected:
  bool Poll() override { return ActionSensorReadM(); }
  bool RunAction(int command) override;
  /// Keeps what a procedure did for the view.
  bool Calibrated(bool done);
  /// Runs the span calibration with the text that the user typed.
  virtual bool CalibrateSpan(const std::string& text) = 0;
  /// The span calibration of platforms 5, 6 and 61.
  bool CalibrateSpanOf(float channel, const std::string& text);
  /// Empties the image and reads the sensor. An image that was not read whole comes back as it was: nothing
  /// of it may be sent, saved or calibrated as zeros.
  bool ReadAfresh(const std::function<bool()>& read);
  /// Undoes such a read that is under way.
  void GiveImageBack();
  /// False while such a read is under way: the image is another sensor's by halves, and no field is taken.
  bool ImageIsWhole() const { return !imageBefore_; }
  /// Reads a block of the sensor's memory (docs/protocol.md).
  bool ReadWhole(std::int32_t selector, bool isEeprom);
  /// The name of a settings file, asked for; nothing if there is none. `text` is then shown as progress.
  std::optional<std::string> AskForFile(UserInterface::FileUse use, const std::string& text);
  /// Loads a settings file of a sensor whose settings lie in EEPROM.
  bool LoadEeprom();
  /// Reads all of such a sensor's settings into the image.
  bool ReadEeprom();
  /// Takes the form and sends them.
  bool SendEeprom();
  /// Saves blocks of such a sensor; a selection block among them marks what `selection` selects.
  bool SaveSelected(const std::string& name, std::int32_t selection,
                    std::span<const snsFil::BlockWrite> blocks);
  /// Tells of a save that failed without a text of its own.
  bool Saved(bool done);

  /// The usual store of an edit: the whole form into the image and back.
  void Restore();
  using PanelFrame::MakeEditable;
  void MakeEditable(Control& field, std::function<void()> check = {});

  /// Pops a menu up, and the form is taken and filled again.
  void ChooseAndStore(Control& label, const ControlArray& menu);
  /// The same for a choice that the form does not hold: the form is taken before, `store` takes the choice.
  void Choose(Control& label, const ControlArray& menu, const std::function<void()>& store);

  Control& CalTemp;
  Control& mCalCO2;
  Control& mCalCO2Zero;
  Control& mCalCO2Background;
  Control& mCalCO2Other;
  Control& mCalCO2span;
  ControlArray furtherCalibrations_;
  /// The view of what the last calibration did.
  Control& mCalCurve;

 private:
  /// The image behind a read of all settings that is under way.
  std::optional<SensorImage> imageBefore_;
  std::string calibratingTemperature_;
};

}  // namespace brelant
