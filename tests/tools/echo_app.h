#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/menu_tree.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include "menu_test_items.h"
#include "panel_app.h"

namespace yxfp_test {

// What the application of a run saw; outlives the run.
struct Journal {
    std::vector<unsigned> samplesShown;
    unsigned homeScreens = 0;
};

// A two-entry menu ("Alpha", "Beta") whose remote mode fails, whose samples are recorded and
// whose home screen reads "HOME".
class EchoApp : public frontpanelsim::PanelApp {
public:
    EchoApp(yxfrontpanel::IDrawingProvider const& provider, std::shared_ptr<Journal> journal)
        : tree_(yxfrontpanel::MenuTreeFactory().create(provider)), journal_(std::move(journal)) {
        tree_->addItem(std::make_shared<yxfp_test::TestItem>(u"Alpha"));
        tree_->addItem(std::make_shared<yxfp_test::TestItem>(u"Beta"));
    }
    ~EchoApp() override { tree_->clearItems(); }

    yxfrontpanel::IMenuTree& root() override { return *tree_; }
    void setLocal(bool local) override {
        if (!local) {
            throw std::runtime_error("no remote here");
        }
    }
    bool isLocal() const override { return true; }
    bool resetDefaults() override { return true; }
    Update acquire(unsigned sample) override {
        return [journal = journal_, sample] { journal->samplesShown.push_back(sample); };
    }
    void drawHomeScreen(yxfrontpanel::IDrawingProvider const& provider) override {
        ++journal_->homeScreens;
        frontpanelhw::drawing::DisplayBuffer frame(provider.getChars(), provider.getLines());
        frame.setLineContent(0, 0, u"HOME");
        provider.draw(frame);
    }

private:
    std::unique_ptr<yxfrontpanel::IMenuTree> tree_;
    std::shared_ptr<Journal> journal_;
};

}  // namespace yxfp_test
