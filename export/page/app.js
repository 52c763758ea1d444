"use strict";

(function () {
  window.Quarn = window.Quarn || {};
})();
