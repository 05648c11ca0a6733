// What the sources that see the network share.
#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <chrono>
#include <memory>

#include "Http.h"

namespace Serve {

class ClService;

/// Limits of a connection.
constexpr unsigned int cnMostConnections = 64;
constexpr unsigned int cnMostHeaderBytes = 8 * 1024;
constexpr unsigned int cnMostBodyBytes = 64 * 1024;
constexpr std::chrono::seconds coRequestTime(10);
constexpr std::chrono::seconds coIdleTime(30);

using HttpRequest = boost::beast::http::request<boost::beast::http::string_body>;
/// Counts a connection as long as it lives.
using Seat = std::shared_ptr<void>;

/// The fields that the service looks at.
StRequest RequestOf(const HttpRequest& oRequest);
/// The fields that all answers have; HEAD leaves the body out.
boost::beast::http::response<boost::beast::http::string_body> ResponseOf(const StAnswer& oAnswer,
                                                                         const HttpRequest& oRequest);

/// Serves the requests of a connection, one after the other, until it ends or becomes a WebSocket.
void StartHttpSession(boost::asio::ip::tcp::socket oSocket, ClService& oService, Seat pSeat);
/// Answers the request for a WebSocket that the service has agreed to, and serves it.
void StartWebSocketSession(boost::beast::tcp_stream oStream, const HttpRequest& oRequest, ClService& oService,
                           Seat pSeat);

}  // namespace Serve
