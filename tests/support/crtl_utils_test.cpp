#include "qsCrtlUtils.h"

#include "os/portable/TPortableOS.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tarn {
namespace {

class TToolForm : public TForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};
const TClassRecord TToolForm::ClassRecord{"TToolForm", &TForm::ClassRecord};

class TBigToolForm : public TToolForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};
const TClassRecord TBigToolForm::ClassRecord{"TBigToolForm", &TToolForm::ClassRecord};

/// Writes down how it is asked to paint.
class TRecordingPeer : public IControlPeer {
public:
    void Invalidate(TControl&) override { Log += "invalidate "; }
    void Redraw(TControl&, std::uint32_t flags) override {
        Log += "redraw:" + std::to_string(flags) + " ";
    }
    void StateChanged(TControl&) override {}
    void SetRedraw(TControl&, bool on) override { Log += on ? "on " : "off "; }
    std::string Log;
};

/// An operating system with a process on it.
class CrtlUtils : public testing::Test {
protected:
    CrtlUtils() : FBefore(InstallOS(&FOS)), FApplication(std::make_unique<TApplication>()) {}
    ~CrtlUtils() override {
        FApplication.reset();
        InstallOS(FBefore);
    }

private:
    TPortableOS FOS;
    TOperatingSystem* FBefore;
    std::unique_ptr<TApplication> FApplication;
};

TEST_F(CrtlUtils, ActiveForm) {
    TScreen screen;
    TForm first, second;
    first.SetCaption("Confirm");
    second.SetCaption("\xD0\x96");
    EXPECT_EQ(GetActiveForm(), nullptr);
    EXPECT_EQ(GetActiveForm("Confirm"), nullptr);
    first.Show();
    EXPECT_EQ(GetActiveForm(), &first);
    EXPECT_EQ(GetActiveForm("cONFIRM"), &first);
    for (const char* caption : {"", "Confir", "Confirm ", "\xD0\x96"})
        EXPECT_EQ(GetActiveForm(caption), nullptr) << caption;
    second.Show();
    EXPECT_EQ(GetActiveForm(), &second);
    EXPECT_EQ(GetActiveForm("\xD0\xB6"), &second);
    EXPECT_EQ(GetActiveForm("Confirm"), nullptr);
    second.Hide();
    EXPECT_EQ(GetActiveForm(), nullptr);
}

TEST_F(CrtlUtils, FormByClass) {
    TScreen screen;
    TForm plain;
    TBigToolForm derived;
    EXPECT_EQ(FindFormByClass(TToolForm::ClassRecord), nullptr);
    EXPECT_EQ(ShowFormByClass(TToolForm::ClassRecord), nullptr);
    EXPECT_FALSE(derived.Visible());

    TToolForm first, second;
    EXPECT_EQ(FindFormByClass(TForm::ClassRecord), &plain);
    EXPECT_EQ(FindFormByClass(TToolForm::ClassRecord), &first);
    EXPECT_EQ(FindFormByClass(TBigToolForm::ClassRecord), &derived);
    EXPECT_EQ(FindFormByClass(TControl::ClassRecord), nullptr);
    second.Show();
    EXPECT_EQ(FindFormByClass(TToolForm::ClassRecord), &second);
    EXPECT_FALSE(first.Visible());
}

TEST_F(CrtlUtils, ShowForm) {
    const struct {
        TWindowState Before, After;
    } cases[] = {{wsNormal, wsNormal}, {wsMinimized, wsNormal}, {wsMaximized, wsMaximized}};
    TScreen screen;
    TForm other;
    TToolForm form;
    for (const auto& row : cases) {
        form.Hide();
        other.Show();
        form.SetWindowState(row.Before);
        EXPECT_EQ(ShowFormByClass(TToolForm::ClassRecord), &form);
        EXPECT_TRUE(form.Visible());
        EXPECT_EQ(GetActiveForm(), &form);
        EXPECT_EQ(form.WindowState(), row.After);
    }
}

TEST_F(CrtlUtils, Painting) {
    TRecordingPeer peer;
    TControl control;
    control.Peer = &peer;
    BeginUpdateControl(control);
    RepaintControl(control);
    RepaintControl(control, {rfAllChildren});
    RepaintControl(control, {rfUpdateNow});
    EndUpdateControl(control);
    RepaintControl(control, {rfAllChildren, rfUpdateNow});
    EXPECT_EQ(peer.Log, "off redraw:1 redraw:129 redraw:257 on redraw:385 ");
}

TEST(CrtlUtilsAlone, NoScreen) {
    EXPECT_EQ(GetActiveForm(), nullptr);
    EXPECT_EQ(GetActiveForm(""), nullptr);
    EXPECT_EQ(FindFormByClass(TForm::ClassRecord), nullptr);
    EXPECT_EQ(ShowFormByClass(TForm::ClassRecord), nullptr);
}

TEST(CrtlUtilsAlone, RepaintFlagNames) {
    EXPECT_EQ(TypeInfoOf<TRepaintFlags>.CompType->Names[rfUpdateNow], "rfUpdateNow");
    EXPECT_EQ(TypeInfoOf<TRepaintFlag>.MaxValue, rfUpdateNow);
}

} // namespace
} // namespace tarn
