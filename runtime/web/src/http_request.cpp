#include "http_request.h"

#include <algorithm>
#include <cctype>

namespace yxfrontpanel::runtime::detail {

namespace {

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return lower;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

bool isTokenChar(char byte) {
    auto const value = static_cast<unsigned char>(byte);
    return std::isalnum(value) != 0 ||
           std::string_view("!#$%&'*+-.^_`|~").find(byte) != std::string_view::npos;
}

bool isToken(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isTokenChar);
}

bool hasVisibleBytesOnly(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char byte) {
        auto const value = static_cast<unsigned char>(byte);
        return value == '\t' || (value >= 0x20 && value != 0x7F);
    });
}

/** Whether the comma-separated list `value` holds `item` (case-insensitive). */
bool listHolds(std::string_view value, std::string_view item) {
    std::string const lower = lowerCase(value);
    std::string_view rest = lower;
    while (!rest.empty()) {
        std::size_t const comma = rest.find(',');
        if (trimmed(rest.substr(0, comma)) == item) {
            return true;
        }
        if (comma == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(comma + 1);
    }
    return false;
}

int hexValue(char byte) {
    if (byte >= '0' && byte <= '9') {
        return byte - '0';
    }
    if (byte >= 'a' && byte <= 'f') {
        return byte - 'a' + 10;
    }
    if (byte >= 'A' && byte <= 'F') {
        return byte - 'A' + 10;
    }
    return -1;
}

std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '%' && index + 2 < text.size() && hexValue(text[index + 1]) >= 0 &&
            hexValue(text[index + 2]) >= 0) {
            decoded +=
                static_cast<char>(hexValue(text[index + 1]) * 16 + hexValue(text[index + 2]));
            index += 2;
        } else if (text[index] == '+') {
            decoded += ' ';
        } else {
            decoded += text[index];
        }
    }
    return decoded;
}

RequestVerdict refused(int status, std::string reason) {
    RequestVerdict verdict;
    verdict.status = status;
    verdict.reason = std::move(reason);
    return verdict;
}

}  // namespace

std::string HttpRequest::header(std::string_view name) const {
    for (auto const& [key, value] : headers) {
        if (key == name) {
            return value;
        }
    }
    return {};
}

std::size_t HttpRequest::headerCount(std::string_view name) const {
    return static_cast<std::size_t>(std::count_if(
        headers.begin(), headers.end(), [name](auto const& field) { return field.first == name; }));
}

HeadParse parseRequestHead(std::string_view received, std::size_t limit, HttpRequest& request,
                           std::size_t& headLength) {
    std::size_t const end = received.substr(0, limit).find("\r\n\r\n");
    if (end == std::string_view::npos) {
        return received.size() >= limit ? HeadParse::TooLarge : HeadParse::Incomplete;
    }
    headLength = end + 4;
    std::string_view head = received.substr(0, end + 2);
    request = HttpRequest{};

    std::size_t lineEnd = head.find("\r\n");
    std::string_view const requestLine = head.substr(0, lineEnd);
    head.remove_prefix(lineEnd + 2);
    std::size_t const firstSpace = requestLine.find(' ');
    std::size_t const secondSpace = requestLine.find(' ', firstSpace + 1);
    if (firstSpace == std::string_view::npos || secondSpace == std::string_view::npos) {
        return HeadParse::Malformed;
    }
    std::string_view const method = requestLine.substr(0, firstSpace);
    std::string_view const target =
        requestLine.substr(firstSpace + 1, secondSpace - firstSpace - 1);
    std::string_view const version = requestLine.substr(secondSpace + 1);
    if (!isToken(method) || target.empty() || target.front() != '/' ||
        !hasVisibleBytesOnly(target) || target.find(' ') != std::string_view::npos ||
        (version != "HTTP/1.1" && version != "HTTP/1.0")) {
        return HeadParse::Malformed;
    }
    request.method = std::string(method);
    std::size_t const question = target.find('?');
    request.path = std::string(target.substr(0, question));
    if (question != std::string_view::npos) {
        request.query = std::string(target.substr(question + 1));
    }

    while (!head.empty()) {
        lineEnd = head.find("\r\n");
        std::string_view const line = head.substr(0, lineEnd);
        head.remove_prefix(lineEnd + 2);
        std::size_t const colon = line.find(':');
        if (colon == std::string_view::npos || !isToken(line.substr(0, colon))) {
            return HeadParse::Malformed;  // also folded lines, which start with a blank
        }
        std::string_view const value = trimmed(line.substr(colon + 1));
        if (!hasVisibleBytesOnly(value)) {
            return HeadParse::Malformed;
        }
        request.headers.emplace_back(lowerCase(line.substr(0, colon)), std::string(value));
    }
    return HeadParse::Complete;
}

std::string presentedToken(HttpRequest const& request) {
    std::string const authorization = request.header("authorization");
    if (lowerCase(authorization.substr(0, 7)) == "bearer ") {
        return std::string(trimmed(std::string_view(authorization).substr(7)));
    }
    std::string_view rest = request.query;
    while (!rest.empty()) {
        std::size_t const ampersand = rest.find('&');
        std::string_view const field = rest.substr(0, ampersand);
        if (field.substr(0, 6) == "token=") {
            return percentDecoded(field.substr(6));
        }
        if (ampersand == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(ampersand + 1);
    }
    return {};
}

RequestVerdict checkRequest(HttpRequest const& request, WebAccess const& access) {
    if (request.headerCount("host") != 1) {
        return refused(400, "no single Host header");
    }
    std::string const host = request.header("host");
    if (!access.hosts.allowsHost(host)) {
        return refused(421, "host " + host + " is not one this panel answers to");
    }
    if (request.method != "GET" && request.method != "HEAD") {
        return refused(405, "method " + request.method + " is not allowed");
    }
    bool const upgrade = !request.header("upgrade").empty();
    if (!upgrade) {
        RequestVerdict verdict;
        verdict.kind = RequestKind::Resource;
        verdict.status = 200;
        return verdict;
    }
    if (request.path != kSocketPath) {
        return refused(404, "upgrade on " + request.path + " instead of the panel's path");
    }
    if (request.method != "GET" || !listHolds(request.header("upgrade"), "websocket") ||
        !listHolds(request.header("connection"), "upgrade") ||
        request.headerCount("sec-websocket-key") != 1 ||
        request.header("sec-websocket-key").empty()) {
        return refused(400, "not a WebSocket opening handshake");
    }
    if (request.header("sec-websocket-version") != "13") {
        return refused(426, "WebSocket version " + request.header("sec-websocket-version"));
    }
    // Browsers always send Origin; a page from another site must not drive the panel. Programs
    // that send none cannot be led by another site; the Host check above still holds for them.
    if (request.headerCount("origin") > 0 && !access.hosts.allowsOrigin(request.header("origin"))) {
        return refused(403, "origin " + request.header("origin") + " is not a host of this panel");
    }
    std::string const token = presentedToken(request);
    if (token.size() > access.maxTokenLength) {
        return refused(400,
                       "token longer than " + std::to_string(access.maxTokenLength) + " bytes");
    }
    RequestVerdict verdict;
    verdict.kind = RequestKind::Upgrade;
    verdict.status = 101;
    if (access.token.empty()) {
        verdict.control = true;
    } else if (!token.empty()) {
        if (!tokenMatches(token, access.token, access.maxTokenLength)) {
            return refused(403, "wrong token");
        }
        verdict.control = true;
    }
    return verdict;
}

std::string_view statusText(int status) {
    switch (status) {
        case 101:
            return "Switching Protocols";
        case 200:
            return "OK";
        case 400:
            return "Bad Request";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 421:
            return "Misdirected Request";
        case 426:
            return "Upgrade Required";
        case 431:
            return "Request Header Fields Too Large";
        case 500:
            return "Internal Server Error";
        case 501:
            return "Not Implemented";
        case 503:
            return "Service Unavailable";
        default:
            return "Error";
    }
}

std::string httpResponse(int status, std::string_view contentType, std::string_view body,
                         bool headOnly, std::string_view extraHeaders) {
    std::string response =
        "HTTP/1.1 " + std::to_string(status) + " " + std::string(statusText(status)) + "\r\n";
    response +=
        "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; "
        "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n"
        "X-Frame-Options: DENY\r\n"
        "X-Content-Type-Options: nosniff\r\n"
        "Cache-Control: no-store\r\n"
        "Content-Type: ";
    response += contentType;
    response += "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
    response += extraHeaders;
    response += "Connection: close\r\n\r\n";
    if (!headOnly) {
        response += body;
    }
    return response;
}

}  // namespace yxfrontpanel::runtime::detail
