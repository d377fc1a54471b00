// The Linux network reader end to end in a private network namespace that holds as many
// interfaces as a host running containers: /proc/net/dev is then several reads long, and an
// interface listed past the first read must be counted like any other.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "sampling/linux/system_counters_linux.h"
#include "sampling/linux/testing/temp_tree.h"

namespace quillmark {
namespace {

constexpr int kPairs = 40;
constexpr int kSkip = 77;
constexpr std::size_t kFrameBytes = 100;

bool writeText(const char* path, const std::string& text) {
  const int fd = open(path, O_WRONLY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool ok = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  close(fd);
  return ok;
}

// As root a network namespace alone will do; otherwise a user namespace that maps us to its root,
// so that `ip` keeps its capabilities across exec.
bool enterPrivateNetwork() {
  if (unshare(CLONE_NEWNET) == 0) return true;
  const std::string uid = std::to_string(getuid()), gid = std::to_string(getgid());
  if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
  return writeText("/proc/self/setgroups", "deny") && writeText("/proc/self/uid_map", "0 " + uid + " 1") &&
         writeText("/proc/self/gid_map", "0 " + gid + " 1");
}

// The kernel's own count of bytes sent on an interface (the link statistics getifaddrs takes
// from netlink, not /proc/net/dev), or absent when the interface is not listed.
std::optional<std::uint64_t> kernelSentBytes(const std::string& name) {
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) != 0) return std::nullopt;
  std::optional<std::uint64_t> sent;
  for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
    if (entry->ifa_addr && entry->ifa_addr->sa_family == AF_PACKET && entry->ifa_data &&
        name == entry->ifa_name)
      sent = static_cast<const rtnl_link_stats*>(entry->ifa_data)->tx_bytes;
  }
  freeifaddrs(list);
  return sent;
}

// Runs in a forked child, which alone enters the namespace. Returns 0, kSkip, or 1 with a reason.
int countThePairPastTheFirstPage(std::string& why) {
  if (!enterPrivateNetwork()) return why = "no network namespace may be created here", kSkip;
  testing::TempTree tree;
  std::string batch;
  for (int i = 0; i < kPairs; ++i) {
    const std::string a = "qa" + std::to_string(i), b = "qb" + std::to_string(i);
    batch +=
        "link add " + a + " type veth peer name " + b + "\nlink set " + a + " up\nlink set " + b + " up\n";
  }
  tree.write("batch", batch);
  const int status = std::system(("ip -batch " + tree.path("batch") + " >/dev/null 2>&1").c_str());
  if (status != 0) return why = "ip (iproute2) cannot create veth pairs here", kSkip;

  // The last pair is listed far past the first page. Mark one end physical and up in a fake sysfs;
  // proc/ is the real one, which shows this namespace's interfaces.
  const std::string last = "qa" + std::to_string(kPairs - 1);
  tree.symlink("/proc", "proc");
  tree.write("sys/class/net/" + last + "/device/uevent", "");
  tree.write("sys/class/net/" + last + "/flags", "0x1003\n");
  LinuxSystemCounters counters(tree.root());

  const int sock = socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
  if (sock < 0) return why = "no packet socket in the namespace", kSkip;
  sockaddr_ll to{};
  to.sll_family = AF_PACKET;
  to.sll_ifindex = static_cast<int>(if_nametoindex(last.c_str()));
  to.sll_halen = ETH_ALEN;
  unsigned char frame[kFrameBytes] = {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x02, 0, 0, 0, 0, 1, 0x88, 0xb5};
  // Until the kernel has brought the link up it drops frames without counting them, and on a
  // loaded machine that takes a while: send until the kernel's own statistics show traffic.
  for (int attempt = 0; kernelSentBytes(last).value_or(0) < kFrameBytes; ++attempt) {
    if (attempt == 3000) {
      close(sock);
      return why = "the kernel never counted a frame sent on " + last, 1;
    }
    if (sendto(sock, frame, sizeof frame, 0, reinterpret_cast<sockaddr*>(&to), sizeof to) !=
        static_cast<ssize_t>(sizeof frame)) {
      close(sock);
      return why = "sending on " + last + " failed", 1;
    }
    usleep(10'000);
  }
  close(sock);
  // The link may still send traffic of its own (IPv6 neighbour discovery), so the reading is
  // checked against the kernel's count just before and just after it.
  const auto low = kernelSentBytes(last);
  const auto reading = counters.readNetworkBytes();
  const auto high = kernelSentBytes(last);
  if (!reading || !low || !high) return why = "reading the counters failed", 1;
  if (reading->size() != 1) return why = last + " was not counted", 1;
  const std::uint64_t up = reading->front().up;
  if (up < *low || up > *high) {
    return why = "bytes sent on " + last + " read as " + std::to_string(up) + ", the kernel counted " +
                 std::to_string(*low) + " to " + std::to_string(*high),
           1;
  }
  return 0;
}

TEST(LinuxNetworkTotalsInANamespace, InterfacesPastTheFirstPageOfNetDevAreCounted) {
  int pipeFds[2];
  ASSERT_EQ(pipe2(pipeFds, O_CLOEXEC), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    std::string why;
    const int rc = countThePairPastTheFirstPage(why);
    (void)!write(pipeFds[1], why.data(), why.size());
    _exit(rc);
  }
  close(pipeFds[1]);
  std::string why;
  char buffer[256];
  for (ssize_t n; (n = read(pipeFds[0], buffer, sizeof buffer)) > 0;)
    why.append(buffer, static_cast<std::size_t>(n));
  close(pipeFds[0]);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status)) << "the namespace child died: " << why;
  if (WEXITSTATUS(status) == kSkip) GTEST_SKIP() << why;
  EXPECT_EQ(WEXITSTATUS(status), 0) << why;
}

}  // namespace
}  // namespace quillmark
