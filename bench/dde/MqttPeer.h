// The same job done by an MQTT broker of the distribution on loopback.
#pragma once

namespace zr::bench {

// Messages a second from one publisher over 100 topics through the broker to one subscriber, all delivered.
// 0 when the broker could not be started.
double MqttMessagesPerSecond(int messages);

}  // namespace zr::bench
