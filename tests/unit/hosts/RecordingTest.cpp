#include "hosts/supervision/Recording.h"

#include "EnglishTexts.h"
#include "platform/FileReplace.h"
#include "support/Environment.h"
#include "support/ManualClock.h"
#include "support/TempFolder.h"
#include "WatchedDevice.h"

#include <gtest/gtest.h>
#include <optional>

namespace zr::supervision {
namespace {

constexpr const char* kSet = "<DataSet Name=\"a\" Period=\"1\"><Device Name=\"METER\"/></DataSet>";

class RecordingTest : public testing::Test {
protected:
    RecordingTest()
    {
        m_options.document = m_folder / "plant.xml";
        m_options.dataFolder = m_folder / "data";
        m_device.SetOnline(false);
    }
    ~RecordingTest() override { m_clock.ReleaseAll(); }

    std::filesystem::path Write(const std::string& content, const std::string& name = "plant.recording.xml")
    {
        return m_folder.Write(name, "<Recording>" + content + "</Recording>");
    }

    Recording& Loaded(const std::string& content)
    {
        Write(content);
        std::string error;
        m_recording.emplace(m_options);
        EXPECT_TRUE(m_recording->Load(m_options.document, error)) << error;
        return *m_recording;
    }

    // With the devices there and asked.
    Recording& Begun(const std::string& content)
    {
        Recording& recording = Loaded(content);
        recording.RegistryCame(true);
        recording.Begin();
        return recording;
    }

    test::TempFolder m_folder;
    test::ManualClock m_clock;
    test::EnglishTexts m_texts;
    SupervisionOptions m_options;
    test::WatchedDevice m_device{u"METER", {test::Number(u"U1", 1)}};
    std::optional<Recording> m_recording;
};

TEST_F(RecordingTest, KeepsItsStoreInTheDataFolderUnderTheNameOfTheDocument)
{
    EXPECT_EQ(Loaded(kSet).Status().storeFile, m_folder / "data" / "plant.zrlog");
    EXPECT_EQ(m_recording->Status().nodes, std::vector<ZRBasicString>{u"plant.zrlog"});
}

TEST_F(RecordingTest, TakesARelativePathFromTheDataFolderAndAnAbsoluteOneAsItIs)
{
    EXPECT_EQ(Loaded(std::string("<Store File=\"sub/b.zrlog\"/>") + kSet).Status().storeFile,
              m_folder / "data" / "sub" / "b.zrlog");
    const std::string absolute = TextOfPath(m_folder / "c.zrlog");
    EXPECT_EQ(Loaded("<Store File=\"" + absolute + "\"/>" + kSet).Status().storeFile, m_folder / "c.zrlog");
}

TEST_F(RecordingTest, BeginsOnceTheRecordedDevicesHaveAnswered)
{
    Recording& recording = Begun(kSet);
    recording.Tick();
    EXPECT_FALSE(recording.Status().isRecording);
    m_device.SetOnline(true);
    recording.Tick();
    EXPECT_TRUE(recording.Status().isRecording);
}

TEST_F(RecordingTest, DoesNotWaitForLongForADeviceThatIsSilent)
{
    Recording& recording = Begun(kSet);
    m_clock.Advance(std::chrono::milliseconds(2900));
    recording.Tick();
    EXPECT_FALSE(recording.Status().isRecording);
    m_clock.Advance(std::chrono::milliseconds(100));
    recording.Tick();
    EXPECT_TRUE(recording.Status().isRecording);
}

TEST_F(RecordingTest, GoesOnWhenTheDevicesComeBackAsTheyWere)
{
    Recording& recording = Begun(kSet);
    m_device.SetOnline(true);
    recording.Tick();
    recording.RegistryGoes();
    std::string error;
    ASSERT_TRUE(recording.Load(m_options.document, error));
    recording.RegistryCame(true);
    EXPECT_TRUE(recording.Status().isRecording);
}

TEST_F(RecordingTest, ABadFileChangesNothing)
{
    Recording& recording = Begun(kSet);
    m_device.SetOnline(true);
    recording.Tick();
    recording.RegistryGoes();
    const auto file = Write("<Bad/>");
    std::string error;
    EXPECT_FALSE(recording.Load(m_options.document, error));
    EXPECT_EQ(error, TextOfPath(file) + ":1: unknown element Bad in Recording");
    recording.RegistryCame(true);
    EXPECT_TRUE(recording.Status().isRecording);
    EXPECT_EQ(recording.Status().dataSets.size(), 1u);
}

TEST_F(RecordingTest, ReadsTheStoreWithoutRecordingWhatAnotherProgramRecords)
{
    Recording& recording = Loaded(kSet);
    recording.RegistryCame(false);
    recording.Begin();
    m_device.SetOnline(true);
    recording.Tick();
    EXPECT_FALSE(recording.Status().isRecording);
    EXPECT_NE(CurrentLoggerStore(), nullptr);
    EXPECT_EQ(recording.Status().dataSets.size(), 1u);
    m_recording.reset();
    EXPECT_EQ(CurrentLoggerStore(), nullptr);
}

TEST_F(RecordingTest, WithoutAFileThereIsNoStore)
{
    std::string error;
    m_recording.emplace(m_options);
    ASSERT_TRUE(m_recording->Load(m_options.document, error)) << error;
    m_recording->RegistryCame(true);
    m_recording->Begin();
    EXPECT_TRUE(m_recording->Tick().empty());
    EXPECT_EQ(CurrentLoggerStore(), nullptr);
    EXPECT_FALSE(m_recording->Status().isConfigured);
    EXPECT_EQ(m_recording->Status().file, m_folder / "plant.recording.xml");
}

TEST_F(RecordingTest, AFileThatIsTakenAwayEndsRecording)
{
    Recording& recording = Begun(kSet);
    m_device.SetOnline(true);
    recording.Tick();
    recording.RegistryGoes();
    std::filesystem::remove(m_folder / "plant.recording.xml");
    std::string error;
    m_clock.ReleaseAll();  // the sampler ends
    ASSERT_TRUE(recording.Load(m_options.document, error)) << error;
    recording.RegistryCame(true);
    EXPECT_FALSE(recording.Status().isRecording);
    EXPECT_EQ(CurrentLoggerStore(), nullptr);
}

TEST_F(RecordingTest, TheOptionStandsForItsDocumentOnly)
{
    m_options.recording = Write("<DataSet Name=\"other\"><Device Name=\"METER\"/></DataSet>", "other.xml");
    Recording& recording = Loaded(kSet);
    EXPECT_EQ(recording.Status().file, m_folder / "other.xml");
    EXPECT_EQ(recording.FileOf(m_folder / "b.xml"), m_folder / "b.recording.xml");
}

TEST_F(RecordingTest, ASpoolInUseIsToldOnceAndTriedAgain)
{
    Write(kSet);
    std::string error;
    auto first = std::make_unique<Recording>(m_options);
    ASSERT_TRUE(first->Load(m_options.document, error)) << error;
    first->RegistryCame(true);
    first->Begin();
    m_device.SetOnline(true);
    first->Tick();
    ASSERT_TRUE(first->Status().isRecording);
    Recording& second = Begun(kSet);
    const auto notices = second.Tick();
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].type, DeviceWarning::ConfigurationRefused);
    m_clock.Advance(std::chrono::seconds(5));
    EXPECT_TRUE(second.Tick().empty());
    EXPECT_FALSE(second.Status().isRecording);
    m_clock.ReleaseAll();
    first.reset();
    m_clock.Advance(std::chrono::seconds(5));
    second.Tick();
    EXPECT_TRUE(second.Status().isRecording);
}

}  // namespace
}  // namespace zr::supervision
