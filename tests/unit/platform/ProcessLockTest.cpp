#include "platform/ProcessLock.h"

#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#ifdef _WIN32
#include <process.h>
#else
#include "support/Process.h"

#include <unistd.h>
#endif

namespace {

using Result = zr::ProcessLock::Result;

#ifdef _WIN32
constexpr const char* kRuntimeVariable = "LOCALAPPDATA";
constexpr const char* kRuntimeFolder = "Kestrix/run";
int OwnProcess()
{
    return ::_getpid();
}
#else
constexpr const char* kRuntimeVariable = "XDG_RUNTIME_DIR";
constexpr const char* kRuntimeFolder = "kestrix";
int OwnProcess()
{
    return ::getpid();
}
#endif

class ProcessLock : public testing::Test {
protected:
    ProcessLock() : m_environment(kRuntimeVariable, m_folder.Path().string()) { m_folder.Write("plant.xml", "<a/>"); }

    zr::test::TempFolder m_folder;
    zr::test::Environment m_environment;
};

TEST_F(ProcessLock, TellsTheSecondOneWhoHoldsTheDocument)
{
    zr::ProcessLock first;
    zr::ProcessLock second;
    ASSERT_EQ(first.Take(m_folder / "plant.xml", "kestrixd"), Result::Taken) << first.Reason();
    EXPECT_EQ(second.Take(m_folder / "plant.xml", "kestrix"), Result::HeldByOther);
    EXPECT_EQ(second.OtherProcess(), OwnProcess());
    EXPECT_EQ(second.OtherProgram(), "kestrixd");
}

TEST_F(ProcessLock, KnowsADocumentByAnySpellingOfItsPath)
{
    zr::ProcessLock first;
    zr::ProcessLock second;
    ASSERT_EQ(first.Take(m_folder / "plant.xml", "kestrixd"), Result::Taken);
    EXPECT_EQ(second.Take(m_folder / "." / "plant.xml", "kestrix"), Result::HeldByOther);
    EXPECT_EQ(second.Take(m_folder / "other.xml", "kestrix"), Result::Taken);
}

TEST_F(ProcessLock, IsFreeAfterRelease)
{
    zr::ProcessLock second;
    {
        zr::ProcessLock first;
        ASSERT_EQ(first.Take(m_folder / "plant.xml", "kestrixd"), Result::Taken);
        first.Release();
        EXPECT_EQ(second.Take(m_folder / "plant.xml", "kestrix"), Result::Taken);
        EXPECT_EQ(first.Take(m_folder / "plant.xml", "kestrixd"), Result::HeldByOther);
        second.Release();
        EXPECT_EQ(first.Take(m_folder / "plant.xml", "kestrixd"), Result::Taken);
    }
    EXPECT_EQ(second.Take(m_folder / "plant.xml", "kestrix"), Result::Taken);
}

TEST_F(ProcessLock, AFileThatADeadProcessLeftHoldsNothing)
{
    const std::filesystem::path folder = m_folder / kRuntimeFolder;
    std::filesystem::create_directories(folder);
    std::filesystem::permissions(folder, std::filesystem::perms(0700));
    const std::filesystem::path file = zr::LockFileOf(m_folder / "plant.xml", folder);
    m_folder.Write(std::filesystem::relative(file, m_folder.Path()).string(), "1 kestrixd\nplant.xml\n");
    zr::ProcessLock lock;
    ASSERT_EQ(lock.Take(m_folder / "plant.xml", "kestrix"), Result::Taken) << lock.Reason();
    zr::ProcessLock second;
    EXPECT_EQ(second.Take(m_folder / "plant.xml", "kestrix"), Result::HeldByOther);
    EXPECT_EQ(second.OtherProcess(), OwnProcess());
}

TEST_F(ProcessLock, TakesALockFileOfItsOwnChoice)
{
    const std::filesystem::path folder = m_folder / "spool";
    std::filesystem::create_directory(folder);
    std::filesystem::permissions(folder, std::filesystem::perms(0700));
    zr::ProcessLock first;
    ASSERT_EQ(first.TakeAt(folder / "lock", "kestrixd"), Result::Taken) << first.Reason();
    zr::ProcessLock second;
    EXPECT_EQ(second.TakeAt(folder / "lock", "kestrix"), Result::HeldByOther);
    EXPECT_EQ(second.OtherProcess(), OwnProcess());
    EXPECT_EQ(second.OtherProgram(), "kestrixd");
    first.Release();
    EXPECT_EQ(second.TakeAt(folder / "lock", "kestrix"), Result::Taken);
}

#ifndef _WIN32  // It has neither links that anyone may make, nor modes, nor a program that locks a file.
TEST_F(ProcessLock, KnowsADocumentByALink)
{
    std::filesystem::create_symlink("plant.xml", m_folder / "link.xml");
    zr::ProcessLock first;
    zr::ProcessLock second;
    ASSERT_EQ(first.Take(m_folder / "plant.xml", "kestrixd"), Result::Taken);
    EXPECT_EQ(second.Take(m_folder / "link.xml", "kestrix"), Result::HeldByOther);
}

TEST_F(ProcessLock, WhatADeadProcessHeldIsTakenOver)
{
    const std::filesystem::path file = zr::LockFileOf(m_folder / "plant.xml", m_folder / "kestrix");
    std::filesystem::create_directory(m_folder / "kestrix");
    std::filesystem::permissions(m_folder / "kestrix", std::filesystem::perms(0700));
    zr::test::Process holder({"flock", file.string(), "sh", "-c", "echo held; exec cat"});
    ASSERT_TRUE(holder.ReadLineWith("held")) << holder.Errors();
    zr::ProcessLock lock;
    EXPECT_EQ(lock.Take(m_folder / "plant.xml", "kestrix"), Result::HeldByOther);
    EXPECT_EQ(lock.OtherProgram(), "another program");
    // Ends cat, and with it the last one that has the lock.
    holder.CloseInput();
    ASSERT_TRUE(holder.WaitForExit());
    EXPECT_EQ(lock.Take(m_folder / "plant.xml", "kestrix"), Result::Taken);
}

TEST_F(ProcessLock, RefusesAFolderThatIsOpenToOthers)
{
    std::filesystem::create_directory(m_folder / "kestrix");
    std::filesystem::permissions(m_folder / "kestrix", std::filesystem::perms(0777));
    zr::ProcessLock lock;
    EXPECT_EQ(lock.Take(m_folder / "plant.xml", "kestrix"), Result::Failed);
    EXPECT_THAT(lock.Reason(), testing::HasSubstr("open to others"));
}
#endif

}  // namespace
