"use strict";
(function () {
  var lcd = document.getElementById("lcd");
  var mode = document.getElementById("mode");
  var role = document.getElementById("role");
  var buttons = document.querySelectorAll(".keys button");
  var control = false;
  var socket = null;

  function setControl(allowed) {
    control = allowed;
    role.textContent = allowed ? "control" : "read-only viewer";
    buttons.forEach(function (button) { button.disabled = !allowed; });
  }

  function renderLine(text, ranges) {
    var cells = Array.from(text);
    var line = document.createElement("div");
    line.className = "line";
    var column = 0;
    ranges.forEach(function (range) {
      if (range[0] > column) {
        line.appendChild(document.createTextNode(cells.slice(column, range[0]).join("")));
      }
      var span = document.createElement("span");
      span.className = "inv";
      span.textContent = cells.slice(range[0], range[1] + 1).join("");
      line.appendChild(span);
      column = range[1] + 1;
    });
    if (column < cells.length) {
      line.appendChild(document.createTextNode(cells.slice(column).join("")));
    }
    return line;
  }

  function showFrame(frame) {
    var lines = [];
    for (var index = 0; index < frame.lines; ++index) {
      lines.push(renderLine(frame.text[index] || "", frame.inverted[index] || []));
    }
    lcd.replaceChildren.apply(lcd, lines);
    mode.textContent = frame.local ? "LOCAL" : "REMOTE";
    mode.className = frame.local ? "badge" : "badge remote";
  }

  function press(key) {
    if (control && socket && socket.readyState === WebSocket.OPEN) {
      socket.send(JSON.stringify({ key: key }));
    }
  }

  // The token travels in the socket's first message, not in a URL.
  var token = new URLSearchParams(window.location.search).get("token");

  function connect() {
    var url = (window.location.protocol === "https:" ? "wss://" : "ws://") +
        window.location.host + "/panel";
    socket = new WebSocket(url);
    socket.onopen = function () {
      if (token) {
        socket.send(JSON.stringify({ token: token }));
      }
    };
    socket.onmessage = function (event) {
      var message = JSON.parse(event.data);
      if (message.type === "hello") {
        setControl(message.control);
      } else if (message.type === "frame") {
        showFrame(message);
      }
    };
    socket.onclose = function () {
      setControl(false);
      role.textContent = "disconnected";
      role.className = "badge offline";
      window.setTimeout(function () {
        role.className = "badge";
        connect();
      }, 2000);
    };
  }

  buttons.forEach(function (button) {
    button.addEventListener("click", function () { press(button.dataset.key); });
  });
  var keyboard = { ArrowUp: "up", ArrowDown: "down", ArrowLeft: "left", ArrowRight: "right",
                   Enter: "enter", Backspace: "back", Escape: "back" };
  document.addEventListener("keydown", function (event) {
    var key = keyboard[event.key];
    // Enter on the focused "Save screenshot" link follows the link instead.
    if (key === "enter" && event.target instanceof HTMLAnchorElement) {
      return;
    }
    if (key) {
      event.preventDefault();
      press(key);
    }
  });
  setControl(false);
  connect();
})();
