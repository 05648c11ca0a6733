// Requests and answers of one connection.
#include <boost/beast/core/bind_handler.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <optional>

#include "Network.h"
#include "Service.h"

namespace Serve {
namespace {

namespace beast = boost::beast;
namespace http = beast::http;
using beast::error_code;

constexpr char cszPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; connect-src "
    "'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
/// What is read and dropped of a client that goes on sending after it was refused.
constexpr size_t cnMostDropped = 1024 * 1024;
constexpr std::chrono::seconds coLinger(2);

std::string StringOf(boost::beast::string_view sText) {
  return {sText.data(), sText.size()};
}

ClServiceError MalformedRequest(const error_code& oError) {
  if (oError == http::error::header_limit)
    return {431, "HEADER_TOO_LARGE",
            "the header has more than " + std::to_string(cnMostHeaderBytes) + " bytes", "Send fewer fields."};
  if (oError == http::error::body_limit)
    return {413, "BODY_TOO_LARGE", "the body has more than " + std::to_string(cnMostBodyBytes) + " bytes",
            "Send less."};
  return {400, "BAD_REQUEST", "no request of HTTP: " + oError.message(), "Send HTTP/1.1."};
}

/// Keeps itself alive by the operations that it waits for.
class ClHttpSession : public std::enable_shared_from_this<ClHttpSession> {
 public:
  ClHttpSession(boost::asio::ip::tcp::socket oSocket, ClService& oService, Seat pSeat)
      : m_oStream(std::move(oSocket)), m_oService(oService), m_pSeat(std::move(pSeat)) {}

  /// Waits for the first bytes of a request as long as an idle connection may stay, then for the rest.
  void Wait() {
    m_oParser.emplace();
    m_oRequest = HttpRequest();
    m_oParser->header_limit(cnMostHeaderBytes);
    m_oParser->body_limit(cnMostBodyBytes);
    if (m_oBuffer.size() != 0) return Read();
    m_oStream.expires_after(coIdleTime);
    m_oStream.async_read_some(m_oBuffer.prepare(cnMostHeaderBytes),
                              [p = shared_from_this()](const error_code& oError, size_t nBytes) {
                                if (oError) return;
                                p->m_oBuffer.commit(nBytes);
                                p->Read();
                              });
  }

 private:
  void Read() {
    m_oStream.expires_after(coRequestTime);
    http::async_read(m_oStream, m_oBuffer, *m_oParser,
                     [p = shared_from_this()](const error_code& oError, size_t) { p->HasRead(oError); });
  }

  void HasRead(const error_code& oError) {
    if (oError.category() == http::make_error_code(http::error::end_of_stream).category() &&
        oError != http::error::end_of_stream && oError != http::error::partial_message)
      return Refuse(MalformedRequest(oError));
    // Gone, or too slow.
    if (oError) return;
    m_oStream.expires_never();
    m_oRequest = m_oParser->release();
    if (beast::websocket::is_upgrade(m_oRequest)) return Upgrade();
    m_oService.Handle(RequestOf(m_oRequest), [p = shared_from_this()](const StAnswer& oAnswer) {
      p->Write(oAnswer, p->m_oRequest.keep_alive());
    });
  }

  void Upgrade() {
    try {
      m_oService.CheckSocket(RequestOf(m_oRequest));
    } catch (const std::exception&) {
      return Write(CurrentErrorAnswer(), false);
    }
    StartWebSocketSession(std::move(m_oStream), m_oRequest, m_oService, std::move(m_pSeat));
  }

  void Refuse(const ClServiceError& oError) {
    try {
      throw oError;
    } catch (const std::exception&) {
      Write(CurrentErrorAnswer(), false);
    }
  }

  void Write(const StAnswer& oAnswer, bool bKeep) {
    m_oResponse = ResponseOf(oAnswer, m_oRequest);
    m_oResponse.keep_alive(bKeep);
    m_oStream.expires_after(coIdleTime);
    const auto Done = [p = shared_from_this(), bKeep](const error_code& oError, size_t) {
      if (oError) return;
      if (bKeep) return p->Wait();
      p->Linger();
    };
    m_pSerializer.emplace(m_oResponse);
    if (m_oRequest.method() == http::verb::head)
      return http::async_write_header(m_oStream, *m_pSerializer, Done);
    http::async_write(m_oStream, *m_pSerializer, Done);
  }

  /// A connection that is closed while its client still sends is reset, and the answer may be lost.
  void Linger() {
    error_code oIgnored;
    m_oStream.socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, oIgnored);
    m_oStream.expires_after(coLinger);
    Drop();
  }

  void Drop() {
    m_oBuffer.clear();
    m_oStream.async_read_some(m_oBuffer.prepare(cnMostHeaderBytes),
                              [p = shared_from_this()](const error_code& oError, size_t nBytes) {
                                p->m_nDropped += nBytes;
                                if (!oError && p->m_nDropped < cnMostDropped) p->Drop();
                              });
  }

  beast::tcp_stream m_oStream;
  ClService& m_oService;
  Seat m_pSeat;
  beast::flat_buffer m_oBuffer;
  std::optional<http::request_parser<http::string_body>> m_oParser;
  HttpRequest m_oRequest;
  http::response<http::string_body> m_oResponse;
  std::optional<http::response_serializer<http::string_body>> m_pSerializer;
  size_t m_nDropped = 0;
};

}  // namespace

StRequest RequestOf(const HttpRequest& oRequest) {
  const std::string sTarget = StringOf(oRequest.target());
  StRequest o;
  o.sMethod = oRequest.method() == http::verb::head ? "GET" : StringOf(oRequest.method_string());
  o.sPath = sTarget.substr(0, sTarget.find('?'));
  o.sHost = StringOf(oRequest[http::field::host]);
  o.sOrigin = StringOf(oRequest[http::field::origin]);
  o.sContentType = StringOf(oRequest[http::field::content_type]);
  o.sAuthorization = StringOf(oRequest[http::field::authorization]);
  o.sProtocols = StringOf(oRequest[http::field::sec_websocket_protocol]);
  o.sClaim = StringOf(oRequest["Claim"]);
  o.sBody = oRequest.body();
  return o;
}

http::response<http::string_body> ResponseOf(const StAnswer& oAnswer, const HttpRequest& oRequest) {
  http::response<http::string_body> oResponse(static_cast<http::status>(oAnswer.nStatus),
                                              oRequest.version() == 10 ? 10 : 11);
  oResponse.set(http::field::content_type, oAnswer.sType);
  oResponse.set(http::field::cache_control, "no-store");
  oResponse.set("Content-Security-Policy", cszPolicy);
  oResponse.set("X-Content-Type-Options", "nosniff");
  oResponse.set("Referrer-Policy", "no-referrer");
  if (!oAnswer.sAllow.empty()) oResponse.set(http::field::allow, oAnswer.sAllow);
  if (oAnswer.nStatus == 401) oResponse.set(http::field::www_authenticate, "Bearer");
  oResponse.body() = oAnswer.sBody;
  oResponse.prepare_payload();
  return oResponse;
}

void StartHttpSession(boost::asio::ip::tcp::socket oSocket, ClService& oService, Seat pSeat) {
  std::make_shared<ClHttpSession>(std::move(oSocket), oService, std::move(pSeat))->Wait();
}

}  // namespace Serve
