// A bench supply: the output voltage and the output switch are settings kept in a file that
// survives a power cut, the measured voltage is published by an acquisition thread, "Save
// settings" and "Reset defaults" do what they say, and the measurement is the home screen after
// a minute without a key.
//   bench_supply [SETTINGS_FILE]      (default: bench_supply.json in the working folder)
#include <frontpanelhw/terminal.h>
#include <yxfrontpanel/settings.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <variant>

using namespace yxfrontpanel;
using namespace std::chrono_literals;

int main(int argc, char** argv) {
    frontpanelhw::TerminalDisplay display(20, 4);
    runtime::PanelOptions options;
    options.idleTimeout = 60s;           // the home screen after a minute without a key
    options.stopWhenInputsClose = true;  // the end when the terminal goes
    runtime::Panel panel(display, options);

    settings::SettingsStoreOptions storeOptions;
    storeOptions.applicationName = "bench-supply";
    storeOptions.schemaVersion = 1;
    settings::SettingsStore store(argc > 1 ? argv[1] : "bench_supply.json", storeOptions,
                                  {settings::SettingDefinition::number("voltage", 5.0, 0.0, 30.0),
                                   settings::SettingDefinition::boolean("output", false)});
    store.load();  // no file: the defaults; a damaged one is moved aside and logged

    // The "hardware": what the acquisition thread reads back.
    std::atomic<double> setPoint{0};
    std::atomic<bool> outputOn{false};

    auto menu = MenuTreeFactory().create(panel.provider());
    auto voltage = std::make_shared<ValueEditorMenuItem>(panel.provider(), u"Voltage", 0, 30);
    voltage->setPrecision(2);
    voltage->setUnit(u"V");
    auto output = std::make_shared<InlineEditorMenuItem>(u"Output");
    output->addValue(0, u"Off");
    output->addValue(1, u"On");
    auto measured = std::make_shared<ReadOnlyMenuItem>(panel.provider(), u"Measured");
    auto save = std::make_shared<TriggerMenuItem>(u"Save settings", 1s);
    // Both write on the store's own thread: a slow flash never holds up the panel.
    save->action = [&store] {
        store.saveInBackground();
        return true;
    };
    auto reset = std::make_shared<TriggerMenuItem>(u"Reset defaults", 1s);
    reset->action = [&store] {
        store.resetToDefaultsInBackground();
        return true;
    };
    for (std::shared_ptr<MenuItem> const& item :
         {std::shared_ptr<MenuItem>(voltage), std::shared_ptr<MenuItem>(output),
          std::shared_ptr<MenuItem>(measured), std::shared_ptr<MenuItem>(save),
          std::shared_ptr<MenuItem>(reset)}) {
        menu->addItem(item);
    }
    menu->setLocal(true);

    // The items show the stored values and put committed edits into the store; the hardware
    // follows the store, for edits, a reset and a load alike.
    auto const voltageBinding = settings::bindSetting(store, "voltage", *voltage);
    auto const outputBinding = settings::bindSetting(store, "output", *output);
    store.subscribe("voltage",
                    [&](settings::SettingValue const& v) { setPoint = std::get<double>(v); });
    store.subscribe("output",
                    [&](settings::SettingValue const& v) { outputOn = std::get<bool>(v); });
    setPoint = store.number("voltage");
    outputOn = store.boolean("output");
    settings::PanelSaveScheduler saving(panel, store);  // at most one write per 2 s; at stop

    double volts = 0;  // the newest reading, on the panel's thread
    panel.setHomeScreen([&volts](IDrawingProvider const& provider) {
        frontpanelhw::drawing::DisplayBuffer screen(provider.getChars(), provider.getLines());
        screen.setLineContent(1, 3, stringhelper::toU16("OUTPUT " + std::to_string(volts)));
        provider.draw(screen);
    });
    panel.setRoot(*menu);
    panel.addKeySource(std::make_shared<frontpanelhw::TerminalKeySource>(display));
    std::thread acquisition([&] {  // 100 readings a second; the panel shows one per frame
        for (int n = 0;; ++n) {
            double const reading = outputOn ? setPoint - n % 5 * 1e-3 : 0.0;
            if (!panel.publish("volts", [&, reading] { measured->setValue(volts = reading, 3); })) {
                break;  // the panel stopped
            }
            std::this_thread::sleep_for(10ms);
        }
    });
    auto const signals = runtime::stopOnSignals(panel, {SIGINT, SIGTERM});
    panel.run();
    acquisition.join();
    return saving.finish() ? 0 : 1;
}
