#pragma once

#include <QColorDialog>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "studio/link/shader.h"
#include "studio/panels/panels.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/scene_index.h"
#include "studio/services/service_binding.h"

namespace tavora::studio::testing {

/// The module with one record, three lights "Key", "Fill", "Rim", and panel services.
class SettingsRig {
  public:
    SettingsRig();
    ~SettingsRig();

    /// Opens the settings panel and runs `user` in it; closes it as by Cancel
    /// when the user did not. True for OK.
    bool open(const std::function<void(QWidget& panel)>& user);
    void draw(const std::function<void(QWidget& panel)>& look);

    Settings settings() const { return settingsOf(shader_->save()); }
    void apply(const char* changesAsJson);

    int updates = 0;  ///< sent by the module

  private:
    void openOptions();

    Scene scene_;
    LightSet lights_;
    std::unique_ptr<SceneIndex> index_;
    std::unique_ptr<ServiceBinding> binding_;
    std::unique_ptr<ModuleCopy> module_;
    std::unique_ptr<Shader> shader_;
};

/// The widget of a control, or one of its parts; fails the test when there is none.
template <class Widget = QWidget>
Widget& find(const QWidget& panel, const char* name) {
    auto* found = panel.findChild<Widget*>(QString::fromUtf8(name));
    if (found != nullptr) return *found;
    throw std::runtime_error(std::string("no control named ") + name);
}

void click(QWidget& widget);
void clickAt(QWidget& widget, int x);
void type(const QWidget& panel, const char* field, const char* text);
void drag(QWidget& widget, int distance, Qt::KeyboardModifiers keys = {});
void selectPage(QWidget& panel, int page);
void whenPicking(std::function<void(QColorDialog& dialog)> user);

}  // namespace tavora::studio::testing
