// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/MenuBinding.h"

#include <QAction>
#include <QMenu>
#include <QSet>
#include <algorithm>

#include "desktop/kit/text.h"

namespace brelant {

namespace {

std::vector<Control*> EntriesOf(Form& form, const std::string& parent) {
  std::vector<Control*> entries;
  for (auto& control : form.Controls()) {
    if (control.Kind() == ControlKind::menu && control.parent == parent) entries.push_back(&control);
  }
  return entries;
}

/// The letters of one menu, each given away once: those at the beginning of a word first.
class Letters {
 public:
  QChar Take(const QString& caption) {
    for (const bool atWordStart : {true, false}) {
      for (int i = 0; i < caption.size(); ++i) {
        const QChar letter = caption[i].toUpper();
        const bool startsWord = i == 0 || caption[i - 1].isSpace();
        if (!letter.isLetterOrNumber() || startsWord != atWordStart || taken_.contains(letter)) continue;
        taken_.insert(letter);
        return letter;
      }
    }
    return {};
  }

 private:
  QSet<QChar> taken_;
};

class MenuBuilder {
 public:
  MenuBuilder(Views& views, QMenuBar& bar, const MenuFace& face) : views_(views), bar_(bar), face_(face) {}

  template <typename Menu>
  void Fill(Menu& menu, const std::string& name) {
    Letters letters;
    for (auto* entry : EntriesOf(views_.Model(), name)) {
      if (name.empty() && !entry->Visible()) continue;
      const auto letter = letters.Take(TextOf(*entry));
      const bool hasEntries = !EntriesOf(views_.Model(), entry->Name()).empty();
      if (hasEntries) {
        auto* below = menu.addMenu(QString());
        Fill(*below, entry->Name());
        Tie(*entry, *below->menuAction(), letter, true);
      } else {
        auto* action = menu.addAction(QString());
        SetUpCommand(*entry, *action);
        Tie(*entry, *action, letter, entry->onClick != nullptr);
      }
    }
  }

 private:
  void SetUpCommand(Control& entry, QAction& action) {
    const auto& ticked = face_.ticked;
    action.setCheckable(std::find(ticked.begin(), ticked.end(), entry.Name()) != ticked.end());
    const auto shortcut = face_.shortcuts.find(entry.Name());
    if (shortcut != face_.shortcuts.end()) action.setShortcut(shortcut->second);
    QObject::connect(&action, &QAction::triggered, &bar_,
                     [views = &views_, bar = &bar_, &entry] { views->ReportClick(*bar, entry); });
  }

  /// An entry that no rule stands behind is drawn as disabled.
  void Tie(Control& entry, QAction& action, QChar letter, bool hasUse) {
    action.setObjectName(QString::fromStdString(entry.Name()));
    views_.OnRefresh([&entry, &action, letter, hasUse] {
      action.setText(WithMnemonic(TextOf(entry), letter));
      action.setVisible(entry.Visible());
      action.setEnabled(entry.Enabled() && hasUse);
      if (action.isCheckable()) action.setChecked(entry.Value() == 1);
    });
  }

  Views& views_;
  QMenuBar& bar_;
  const MenuFace& face_;
};

}  // namespace

void BindMenus(Views& views, QMenuBar& bar, const MenuFace& face) {
  MenuBuilder(views, bar, face).Fill(bar, {});
}

}  // namespace brelant
